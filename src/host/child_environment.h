// What the environment of a runtime's own process holds.
#ifndef KOVADX_HOST_CHILD_ENVIRONMENT_H
#define KOVADX_HOST_CHILD_ENVIRONMENT_H

class XCmdArgument;
class XConfigOptions;

namespace kova {

// Pushes the entries for the language of those options, each a name, "=" and a value, in the order in which they are to
// be set. What the configuration gives comes first; most of the rest is pushed only where the configuration is silent.
// An empty value removes the variable. The process-wide values, the Java record and this process's own environment must
// be as the child shall find them.
void pushChildEnvironment(XConfigOptions& options, XCmdArgument& environment);

// Sets the entries in this process's environment, which a child inherits.
void applyEnvironment(XCmdArgument& environment);

}  // namespace kova

#endif
