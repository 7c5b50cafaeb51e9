// What Excel answers to the callbacks of functions that are timed.
#pragma once

namespace quillmere {

/// From now on callbacks are answered by a host that does no more than it must: xlCoerce with number cells, counted
/// along the rows of what is asked for; VALUE for texts that strtod reads whole; SUM of one array; one cell calls, on a
/// sheet of Book1; every second row is hidden. All others fail.
void InstallExcelAnswers();

}  // namespace quillmere
