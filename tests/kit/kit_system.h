// The few things that the kit asks the real system for, whatever backend the tested code is linked with.
#ifndef KOVADX_TESTS_KIT_KIT_SYSTEM_H
#define KOVADX_TESTS_KIT_KIT_SYSTEM_H

#include <cstdint>
#include <string>

namespace kova::kit {

unsigned long realProcessId();

// Gives this process and its children a pipe folder of their own, where the platform has one; removed by the second.
void makePipeFolder();
void removePipeFolder();

// The socket files in that folder, blank between the names; empty when there is none.
std::string leftPipeFiles();

// How many descriptors or handles the system counts for this process; -1 when it does not tell.
int systemHandleCount();

// The processor time that this process has used, all threads together, in milliseconds.
std::uint64_t processorMs();

// Has an interrupt end this program and the ones that it starts, also where a shell that runs the tests in the
// background wants it ignored.
void takeInterrupts();

// Ends a process at once, as its system's user would; false when it can not.
bool killProcess(std::uint32_t id);

// True when this process has a child, running or ended, that nobody waited for.
bool hasChildLeft();

}  // namespace kova::kit

#endif
