#include "transport/DXCmdDispatcher.h"

#include "message/CleXDSmb.h"
#include "trace/DxTracer.h"

DXCmdDispatcher::DXCmdDispatcher(const std::string& pipeName, bool client)
    : pipe_(std::make_unique<AsyCsPipe1>(pipeName, client)) {}

DXCmdDispatcher::~DXCmdDispatcher() = default;

int DXCmdDispatcher::connectPeer() { return pipe_->isServer() ? pipe_->connectClient() : pipe_->connectServer(); }

int DXCmdDispatcher::sendCmd(CmdKey key) { return sendCmd(key, {}); }

int DXCmdDispatcher::sendCmd(CmdKey key, const std::vector<std::string>& args) {
  CleXDSmb request;
  request.SetLong(key);
  for (const std::string& arg : args) request.SetString(arg);
  CleXDSmb reply;
  DxTrace("cmd NO: " + std::to_string(static_cast<int>(key)));
  const int sent = pipe_->send(request, reply);
  const int result = sent == 0 ? reply.GetErrorCode() : sent;
  DxTrace("cmd return: " + std::to_string(result));
  return result;
}

int DXCmdDispatcher::receiveCmd(DXCmdDispatcherVisitor* visitor) { return pipe_->receive(visitor); }

void DXCmdDispatcher::cancel() { pipe_->cancel(); }

void DXCmdDispatcher::peerHasEnded() { pipe_->peerHasEnded(); }

DXCmdDispatcherVisitor::~DXCmdDispatcherVisitor() = default;

int DXCmdDispatcherVisitor::VisitReceiver(CleXDSmb& request, CleXDSmb& reply) {
  const std::vector<int> longs = request.GetLongData().GetData();
  if (longs.size() != 1) return 0;
  const auto key = static_cast<DXCmdDispatcher::CmdKey>(longs.front());
  const int result = cmdDispatcher(key, request.GetStringData().GetData());
  if (key == DXCmdDispatcher::kStopDX) {
    DxTrace("kStopDX");
    reply.SetErrorCode(0);
    return -1;
  }
  reply.SetErrorCode(result);
  return result;
}

int DXCmdDispatcherVisitor::cmdDispatcher(DXCmdDispatcher::CmdKey, const std::vector<std::string>&) { return 0; }
