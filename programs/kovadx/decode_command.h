// "kovadx decode": the bytes of messages as text.
#ifndef KOVADX_PROGRAMS_KOVADX_DECODE_COMMAND_H
#define KOVADX_PROGRAMS_KOVADX_DECODE_COMMAND_H

#include <string>

namespace kova::program {

// Prints the messages of a file, which stand there one behind the other. 0; 1 when the bytes are not all messages (what
// could be read is printed, and a line says where it ends); 125 when the file can not be read.
int decodeCommand(const std::string& path);

}  // namespace kova::program

#endif
