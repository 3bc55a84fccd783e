#pragma once
// How the user stops the program.

#include <stdexcept>

namespace program {

/// Thrown where work stops because the user asked for it.
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/// From now on Ctrl-C, a request to end and a terminal that is closed stop the work at its next
/// step; a second one ends the program at once. With nohup, a closed terminal has no effect.
void catchInterrupts();

bool isInterrupted();

/// @throws Interrupted  if the user asked for it
void throwIfInterrupted();

} // namespace program
