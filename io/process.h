// What a program asks the operating system about itself: its standard streams, and whether a
// person wants it to stop.
//
// Threads: call keepStandardStreams() and watchForInterrupt() once, before other threads start;
// the others may be called from any thread.

#ifndef IO_PROCESS_H_
#define IO_PROCESS_H_

namespace orbseq {

// Fills the places of standard streams that the caller closed with ones on which reading and
// writing fail, so that no file opened later takes such a place and receives what is printed.
void keepStandardStreams() noexcept;

enum class StandardStream : int { kInput = 0, kOutput = 1, kError = 2 };

bool isTerminal(StandardStream stream) noexcept;

// From now on a request to stop (SIGINT, SIGTERM) is noted instead of ending the process, and ends
// reads and writes that wait (io/descriptor.h); a second one ends the process. A request that the
// caller ignores stays ignored. Writing to a pipe that nobody reads becomes an error of the write.
void watchForInterrupt() noexcept;

// Whether a request to stop came since watchForInterrupt().
bool interrupted() noexcept;

}  // namespace orbseq

#endif  // IO_PROCESS_H_
