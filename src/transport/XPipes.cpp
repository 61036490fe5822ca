#include "transport/XPipes.h"

#include "trace/DxTracer.h"

const std::string XPipes::SYNTAX_PIPE = "syntax";
const std::string XPipes::SYNTAX_RESULT_PIPE = "syntaxresult";
const std::string XPipes::XDAPI_PIPE = "xdapi";
const std::string XPipes::XDAPI_RESULT_PIPE = "xdapiresult";

XPipes::XPipes(const std::string& baseName) : baseName_(baseName) {
  DxTrace(SYNTAX_PIPE + ":" + GetSyntaxPipe()->GetPipeName());
  DxTrace(SYNTAX_RESULT_PIPE + ":" + GetSyntaxResultPipe()->GetPipeName());
  DxTrace(XDAPI_PIPE + ":" + GetXDAPIPipe()->GetPipeName());
  DxTrace(XDAPI_RESULT_PIPE + ":" + GetXDAPIResultPipe()->GetPipeName());
}

XPipes::~XPipes() = default;

KovaPipe* XPipes::GetSyntaxPipe() { return Ensure(syntax_, SYNTAX_PIPE); }

KovaPipe* XPipes::GetSyntaxResultPipe() { return Ensure(syntaxResult_, SYNTAX_RESULT_PIPE); }

KovaPipe* XPipes::GetXDAPIPipe() { return Ensure(api_, XDAPI_PIPE); }

KovaPipe* XPipes::GetXDAPIResultPipe() { return Ensure(apiResult_, XDAPI_RESULT_PIPE); }

KovaPipe* XPipes::Ensure(std::unique_ptr<KovaPipe>& pipe, const std::string& suffix) {
  if (!pipe) pipe = std::make_unique<KovaPipe>(baseName_ + suffix);
  return pipe.get();
}
