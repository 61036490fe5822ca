// The engine's ends of the two syntax pipes of one set, for tests of what runs in a runtime's process.
#ifndef KOVADX_TESTS_HOST_ENGINE_ENDS_H
#define KOVADX_TESTS_HOST_ENGINE_ENDS_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "message/CleXDSmb.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"

namespace kova {

// Made before the runner is started, whose first message goes into the pipe that is created here.
class EngineEnds {
 public:
  explicit EngineEnds(const std::string& base) : syntax_(base + "syntax"), result_(base + "syntaxresult") {
    EXPECT_EQ(result_.CreatePipe(), 0);
  }

  // The code of one message; the transport's own when none came.
  int receive() {
    result_.ConnectPipe();
    CleXDSmb message;
    return ReceiveData(&result_, message, true);
  }

  void send(const std::vector<std::string>& lines) {
    CleXDSmb message;
    for (const std::string& line : lines) message.SetString(line.c_str());
    EXPECT_EQ(SendData(&syntax_, message, false), 0);
  }

  void open() { EXPECT_EQ(syntax_.KOVACreateFile(), 0); }
  void leave() { syntax_.ClosePipe(); }

 private:
  KovaPipe syntax_;
  KovaPipe result_;
};

}  // namespace kova

#endif
