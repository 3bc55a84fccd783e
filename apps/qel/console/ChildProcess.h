#pragma once
// The program's work in a child process, whose parent outlives a crash and stops it on request.

#include <functional>
#include <string>

namespace program {

constexpr int kExitBadInput = 2;
constexpr int kExitInterrupted = 130; // 128 + SIGINT, as shells have it

/// Does the work in a child process and returns its exit code, which becomes this process's.
///
/// VTK's readers believe what a file says of itself; some of them crash, run out of memory or end
/// the program where it is damaged. That ends the child alone: the parent then names the file and
/// returns kExitBadInput. A child that a signal ends elsewhere has this process end likewise.
///
/// Ctrl-C, a request to end and a terminal that is closed end the child at once, and the result is
/// kExitInterrupted. With nohup, a closed terminal has no effect.
int runInChild(const std::function<int()>& work);

/// Reads a file by the code of others; an end of the child meanwhile is the fault of the file. The
/// work includes the release of its readers, some of which recurse as deeply as a file nests.
/// @throws UserError  if the work runs out of memory; and whatever it throws itself
void whileReading(const std::string& path, const std::function<void()>& work);

/// Has the parent remove a folder if the child ends otherwise than by itself; an empty name takes
/// that back.
void removeAtKill(const std::string& folder);

/// Does something short that is not to be interrupted halfway.
void withoutInterrupt(const std::function<void()>& work);

} // namespace program
