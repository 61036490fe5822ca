// The runner of a program that drives the engine: the program's own thread sits in invokeX and runs the lines that
// other threads hand over (see sync_syntax.h), until it is told to stop. Its maker owns it.
#ifndef KOVADX_HOST_CMDKOVADX_H
#define KOVADX_HOST_CMDKOVADX_H

#include <string>

#include "export.h"
#include "host/DriveX.h"

class KOVADX_API CmdKovaDX : public DriveX {
 public:
  CmdKovaDX(const std::string& name, StatisticsX* host, XConfigOptions* options);
  ~CmdKovaDX() override;

  // Starts the runtime, unless the host is initialised, and hands it callbacks and output function. The host's code.
  int initializeX() override;

  // Runs what GRunSyncSyntax hands over until GStopSyncSyntax is called; 0. The host must be initialised by then. One
  // thread of the process at a time.
  int invokeX() override;
};

#endif
