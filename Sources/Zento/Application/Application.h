#pragma once

namespace zento {

/// Opens the window and runs until the program ends; or, where one runs already, raises that.
/// Returns the program's exit status. Errors go to standard error in one sentence.
int runApplication(int argc, char** argv);

} // namespace zento
