#include "excerpt.h"

#include <algorithm>
#include <vector>

#include "columns.h"
#include "escape.h"

namespace {

constexpr int MostColumns = 72;  // so that there is room for the line's number
constexpr int TabStop = 8;
constexpr std::string_view Dots = "...";

// What stands for one character, or for a byte that is part of none.
struct Cell {
    std::size_t offset;  // in the excerpt
    std::string shown;
    int columns;
};

// A tab stays one, in both lines, so that they are in step whatever it is on the terminal.
Cell cellOf(std::string_view text, std::size_t offset, int column) {
    if (text[offset] == '\t') return {offset, "\t", TabStop - column % TabStop};
    const Character character = characterIn(text.substr(offset));
    Cell cell{offset, escaped(text.substr(offset, std::max<std::size_t>(character.length, 1))), 1};
    const bool isItself = character.length > 1 && escapes::stays(character.code);
    cell.columns = isItself ? columnsOf(character.code) : static_cast<int>(cell.shown.size());
    return cell;
}

std::vector<Cell> cellsOf(std::string_view text) {
    std::vector<Cell> cells;
    int column = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        cells.push_back(cellOf(text, offset, column));
        column += cells.back().columns;
        offset += std::max<std::size_t>(characterIn(text.substr(offset)).length, 1);
    }
    return cells;
}

// The cells that are shown. The place is in the middle, unless there is room for more on one side.
struct Window {
    std::size_t first, last;
};

Window windowAround(const std::vector<Cell>& cells, std::size_t place) {
    Window window{place, place};
    int columns = 0;
    const auto take = [&](std::size_t cell, int most) {
        if (columns + cells[cell].columns > most) return false;
        columns += cells[cell].columns;
        return true;
    };
    const auto takeInFront = [&](int most) {
        while (window.first != 0 && take(window.first - 1, most))
            --window.first;
    };
    takeInFront(MostColumns / 2);
    while (window.last != cells.size() && take(window.last, MostColumns))
        ++window.last;
    takeInFront(MostColumns);
    return window;
}

std::string blankFor(const Cell& cell) {
    return cell.shown == "\t" ? cell.shown : std::string(static_cast<std::size_t>(cell.columns), ' ');
}

}  // namespace

MarkedLine mark(const QeXmlExcerpt& excerpt) {
    const std::vector<Cell> cells = cellsOf(excerpt.text);
    const auto at =
        std::find_if(cells.begin(), cells.end(), [&](const Cell& cell) { return cell.offset >= excerpt.offset; });
    const auto place = static_cast<std::size_t>(at - cells.begin());
    const auto [first, last] = windowAround(cells, place);
    MarkedLine line;
    if (first != 0 || excerpt.isCutInFront) line = {std::string(Dots), std::string(Dots.size(), ' ')};
    for (std::size_t i = first; i != last; ++i) {
        line.text += cells[i].shown;
        if (i < place) line.caret += blankFor(cells[i]);
    }
    line.caret += '^';
    if (last != cells.size() || excerpt.isCutBehind) line.text += Dots;
    return line;
}
