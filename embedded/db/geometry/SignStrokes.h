// Signs of geometric tolerances, drawn as strokes: common fonts have few of them.
#pragma once

#include <string_view>

#include "hostdraw.h"

namespace quoin::db {

class DrawWalk;

/// How wide the font of signs ("gdt.shx") is for a letter, in heights of capitals; 0 for another
/// font.
double signAdvance(std::wstring_view font, wchar_t letter);

/// Whether a text has signs that are drawn here, as characters or as letters of the font of signs
/// ("gdt.shx").
bool hasStrokedSigns(const hostx::DrawText& text);
/// Draws such a text: its signs as strokes, the rest as texts beside them.
void drawWithSigns(const hostx::DrawText& text, const hostx::DrawLook& look, DrawWalk& walk);

}  // namespace quoin::db
