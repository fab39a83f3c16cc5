#pragma once

#include <cstdint>

/// How many columns of a terminal a character takes that is not ASCII: none where it is a mark on
/// the one in front, two in East Asian scripts and for pictures, else one. Of scripts that terminals do not put in
/// columns, marks count like letters.
int columnsOf(std::uint32_t code);
