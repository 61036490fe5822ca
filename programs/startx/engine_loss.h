// What becomes of startx when its engine has gone, or can not be reached any more, without having told it to stop.
#ifndef KOVADX_PROGRAMS_STARTX_ENGINE_LOSS_H
#define KOVADX_PROGRAMS_STARTX_ENGINE_LOSS_H

#include <string>

class DXCmdDispatcher;

namespace kova::program {

// Tells on the error stream why, in one line, and asks for the end that a stop of the engine's would lead to: the main
// thread's runs and the wait for commands end as soon as they can. When the process is still there a second later it is
// killed with all that it has started. Any thread; only the first call does anything, and none waits.
void loseEngine(const std::string& why);

// As above, by one who has seen the engine's end of a pipe break, or no such pipe at all.
void loseEngineOfPipe();

// The main thread tells between these what the commands come by, so that the wait for them can be ended. False, and
// nothing is to be served, when the engine has been lost already.
bool beginToServe(DXCmdDispatcher* commands);
void endServing();

// The engine has been heard: what breaks from now on was whole before.
void noteEngineReached();

// The main thread's last call: does not return when the engine has been lost, since then nobody else ends what this
// process has started.
void endAfterLoss();

}  // namespace kova::program

#endif
