// The table that setup_dxcallback hands to a runtime: opaque to it, but where it is and what it holds never changes
// while the process lives. Any thread may ask for it.
#ifndef KOVADX_API_CALLBACK_TABLE_H
#define KOVADX_API_CALLBACK_TABLE_H

namespace kova {

// Its address: always the same, never null.
void* callbackTable();

}  // namespace kova

#endif
