// The items of a request as a handler reads them: those behind the ones that named the data set and the variable.
//
// It refers to the request, which must outlive it. The items are there: the dispatcher has counted them.
#ifndef KOVADX_ENGINE_REQUEST_ITEMS_H
#define KOVADX_ENGINE_REQUEST_ITEMS_H

#include <string>
#include <vector>

#include "message/CleXDSmb.h"

namespace kova::engine {

class RequestItems {
 public:
  // Passes over so many strings and longs.
  RequestItems(const CleXDSmb& request, int texts, int integers)
      : request_(&request), texts_(texts), integers_(integers) {}

  // Each index counts items of its kind, from 0.
  const std::string& text(int index) const { return request_->Strings()[texts_ + index]; }
  int integer(int index) const { return request_->Longs()[integers_ + index]; }
  double number(int index) const { return request_->Doubles()[index]; }
  const std::vector<std::string>& texts(std::size_t listIndex) const {
    return request_->StringArrays()[listIndex].values();
  }

 private:
  const CleXDSmb* request_;
  int texts_;
  int integers_;
};

}  // namespace kova::engine

#endif
