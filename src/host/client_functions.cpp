#include "host/client_functions.h"

namespace kova {
namespace {

ClientFunctions theFunctions;

}  // namespace

const ClientFunctions& clientFunctions() { return theFunctions; }

void setClientFunctions(const ClientFunctions& functions) { theFunctions = functions; }

}  // namespace kova
