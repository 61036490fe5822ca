// The runner of a runtime's own process: once started it tells the engine that it is ready, waits for one message of
// syntax, runs it, and sends the result back. It uses the "syntax" and "syntaxresult" pipes of its index.
//
// In the engine's process such a runner only holds the index of a run and is never started. See DriveX for who owns it
// and which threads may use it.
#ifndef KOVADX_HOST_KOVADX_P_H
#define KOVADX_HOST_KOVADX_P_H

#include <string>
#include <vector>

#include "export.h"
#include "host/DriveX.h"

class XPipes;

class KOVADX_API KovaDX_P : public DriveX {
 public:
  KovaDX_P(const std::string& name, StatisticsX* host, XConfigOptions* options);
  ~KovaDX_P() override;

  // For the language "R", which drives itself: marks its host as ready and hands it callbacks and output function,
  // without starting anything. Nothing for other languages. Always 0.
  int initR();

 protected:
  // One exchange with the engine. What its pipes gave: the code of the run itself travels in the message. 99104 without
  // a set of pipes.
  int runX() override;

  // A thread to which no engine has connected ends its run with the pipe's code.
  void releaseThread() override;

 private:
  XPipes* pipes() const;
  int exchange();
  int receiveLines(XPipes& set, std::vector<std::string>* lines);
  int runLines(std::vector<std::string>& lines);
  int prepareHost();
};

#endif
