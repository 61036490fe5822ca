// The reference engine: data sets in memory, and an answer to every request.
//
// Made by the program that offers an engine; it must outlive the servers that ask it. Any thread may call it: requests
// of several conversations are carried out one after the other.
#ifndef KOVADX_ENGINE_ENGINE_H
#define KOVADX_ENGINE_ENGINE_H

#include <functional>
#include <mutex>
#include <string>

#include "engine/data_set.h"
#include "engine/engine_state.h"
#include "engine/error_codes.h"
#include "message/CleXDSmb.h"

namespace kova::engine {

class Engine {
 public:
  // Takes a data set in and makes it the active one.
  void open(DataSet dataSet);

  // Carries out one request; see dispatch. A case cursor and a data step belong to the conversation
  // that made it.
  void perform(const CleXDSmb& request, CleXDSmb& reply, int conversation = 0) noexcept;

  // The program of a conversation has gone: its case cursor goes too, and its data step ends.
  void leave(int conversation = 0) noexcept;

  // Hands over each piece of output once it is finished, as text in lines of the engine's output width. Called in the
  // thread that carries out the request, before that is answered; must not call the engine. To be set first.
  void onOutput(std::function<void(const std::string& text)> show);

  // Runs the blocks in other languages that submitted syntax has; without it, or with an empty one, they are refused.
  // Called in the thread that carries out the request. Meanwhile the engine serves other requests, so that the block
  // can make its own, as another conversation. Not to be called while a block runs.
  void onBlock(RunBlock run);

  // Ends a procedure that a program left open, as if it had ended it.
  void endOutput();

  // All finished output as an HTML page.
  std::string htmlOutput() const;

  // Writes the active data set as a Data Package; see writeDataPackage. kNoActiveDataSet when there is none.
  ErrorCode saveActive(const std::string& descriptor, std::string* problem) const;

 private:
  mutable std::mutex mutex_;
  EngineState state_;
};

}  // namespace kova::engine

#endif
