// One set of the four pipes of a run: syntax and its results, API calls and their replies. Making a set makes no pipe
// yet: the ends are only named, and their users create or open them.
//
// It owns the four ends. No lock: each end is used by one thread at a time.
#ifndef KOVADX_TRANSPORT_XPIPES_H
#define KOVADX_TRANSPORT_XPIPES_H

#include <memory>
#include <string>

#include "export.h"
#include "transport/KovaPipe.h"

class KOVADX_API XPipes {
 public:
  static const std::string SYNTAX_PIPE;         // "syntax"
  static const std::string SYNTAX_RESULT_PIPE;  // "syntaxresult"
  static const std::string XDAPI_PIPE;          // "xdapi"
  static const std::string XDAPI_RESULT_PIPE;   // "xdapiresult"
  static constexpr int PIPE_BUF_SIZE = kova::kPipeChunk;

  // Names the four ends, base name + constant, and traces one record for each: constant, ":", full pipe name.
  explicit XPipes(const std::string& baseName);
  XPipes(const XPipes&) = delete;
  XPipes& operator=(const XPipes&) = delete;
  ~XPipes();

  // The ends, owned by the set; never null.
  KovaPipe* GetSyntaxPipe();
  KovaPipe* GetSyntaxResultPipe();
  KovaPipe* GetXDAPIPipe();
  KovaPipe* GetXDAPIResultPipe();

 private:
  KovaPipe* Ensure(std::unique_ptr<KovaPipe>& pipe, const std::string& suffix);

  std::string baseName_;
  std::unique_ptr<KovaPipe> syntax_;
  std::unique_ptr<KovaPipe> syntaxResult_;
  std::unique_ptr<KovaPipe> api_;
  std::unique_ptr<KovaPipe> apiResult_;
};

#endif
