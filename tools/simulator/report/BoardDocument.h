#ifndef TOOLS_SIMULATOR_REPORT_BOARDDOCUMENT_H
#define TOOLS_SIMULATOR_REPORT_BOARDDOCUMENT_H

#include "board/Board.h"

#include <ostream>

/**
 * Writes what a board is and what is on it as a document for programs, and changes nothing there.
 *
 * A process can do so for one board only: what the layer finds out about its board holds for the
 * life of the process.
 */
void writeBoardDocument(std::ostream& out, const Board& board);

#endif
