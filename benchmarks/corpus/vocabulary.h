#pragma once

#include <corpus/random.h>
#include <string>

/// What the documents' texts are made of.
namespace tessit::benchmarks {

inline constexpr const char* Words[] = {
    "a",        "about",   "after",    "again",    "against", "all",     "along",   "and",       "answer", "as",
    "at",       "autumn",  "be",       "before",   "behind",  "between", "bread",   "bridge",    "but",    "by",
    "city",     "clear",   "distance", "door",     "earth",   "evening", "every",   "far",       "field",  "first",
    "for",      "from",    "garden",   "glass",    "had",     "harbour", "have",    "he",        "her",    "here",
    "history",  "house",   "in",       "into",     "island",  "it",      "journey", "language",  "letter", "light",
    "long",     "market",  "morning",  "mountain", "never",   "no",      "not",     "of",        "on",     "one",
    "open",     "orchard", "other",    "out",      "over",    "paper",   "people",  "question",  "quiet",  "rain",
    "remember", "river",   "road",     "season",   "she",     "silence", "small",   "something", "stone",  "story",
    "street",   "summer",  "that",     "the",      "their",   "there",   "they",    "through",   "time",   "to",
    "together", "under",   "village",  "was",      "water",   "were",    "window",  "winter",    "with",   "without"};

inline constexpr const char* GivenNames[] = {"Anna", "Bela",  "Clara", "David", "Emil",   "Fiona", "Georg", "Hanna",
                                             "Ines", "Jonas", "Karin", "Lukas", "Martha", "Nadia", "Oscar", "Paula"};

inline constexpr const char* FamilyNames[] = {"Berg",  "Castle",  "Dorn",  "Ekman",  "Fischer", "Green",
                                              "Holm",  "Iversen", "Jones", "Keller", "Lindon",  "Moser",
                                              "Novak", "Olsen",   "Price", "Quist"};

inline constexpr const char* Cities[] = {"Aarhus", "Basel", "Cork", "Dresden", "Evora", "Florence", "Ghent", "Haarlem"};

// Every letter is one byte in ISO-8859-1 and two in UTF-8.
inline constexpr const char* AccentedNames[] = {"Ren\u00E9e", "J\u00FCrgen", "\u00C5sa",  "No\u00EBl",
                                                "Zo\u00EB",   "S\u00F8ren",  "In\u00EAs", "Bj\u00F6rn"};
inline constexpr const char* AccentedCities[] = {"K\u00F6ln", "M\u00E1laga", "Besan\u00E7on", "\u00C5rhus",
                                                 "Z\u00FCrich"};

/// Appends `count` words with blanks between them.
inline void appendWords(std::string& out, Random& random, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) out += ' ';
        out += random.pick(Words);
    }
}

inline std::string words(Random& random, std::size_t count) {
    std::string text;
    appendWords(text, random, count);
    return text;
}

/// An amount with two decimals.
inline std::string amount(Random& random) {
    const std::size_t cents = random.below(100);
    return std::to_string(random.below(20000)) + (cents < 10 ? ".0" : ".") + std::to_string(cents);
}

}  // namespace tessit::benchmarks
