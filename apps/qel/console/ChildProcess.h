#pragma once
// The program's work in a child process, whose parent outlives a crash.

#include <functional>
#include <string>

namespace program {

constexpr int kExitBadInput = 2;

/// Does the work in a child process and returns its exit code, which becomes this process's.
///
/// VTK's readers believe what a file says of itself; some of them crash, run out of memory or end
/// the program where it is damaged. That ends the child alone: the parent then names the file and
/// returns kExitBadInput. A child that a signal ends elsewhere has this process end likewise.
/// Signals to the parent are passed on.
int runInChild(const std::function<int()>& work);

/// Reads a file by the code of others; an end of the child meanwhile is the fault of the file. The
/// work includes the release of its readers, some of which recurse as deeply as a file nests.
/// @throws UserError  if the work runs out of memory; and whatever it throws itself
void whileReading(const std::string& path, const std::function<void()>& work);

} // namespace program
