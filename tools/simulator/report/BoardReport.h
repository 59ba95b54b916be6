#ifndef TOOLS_SIMULATOR_REPORT_BOARDREPORT_H
#define TOOLS_SIMULATOR_REPORT_BOARDREPORT_H

#include "board/Board.h"

#include <ostream>

/**
 * Writes what a board is and what is on it, and changes nothing there.
 *
 * What cannot be read is named in its place; everything else is shown. A process can report on one
 * board only: what the layer finds out about its board holds for the life of the process.
 *
 * @param dump  whether to write the contents of the used blocks of the warm area
 */
void reportBoard(std::ostream& out, const Board& board, bool dump);

#endif
