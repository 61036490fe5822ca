// Calls about the cases of a data set.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int GetRowCount(int* errorCode) { return Ask<int>(Command::GetRowCount, errorCode); }
