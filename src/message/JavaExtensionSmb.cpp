#include "message/JavaExtensionSmb.h"

#include <cstdlib>
#include <cstring>
#include <utility>

char* JavaExtensionSmb::m_data = nullptr;
int JavaExtensionSmb::m_dataLen = 0;
std::string JavaExtensionSmb::m_extensionPath;
std::string JavaExtensionSmb::m_commandName;
bool JavaExtensionSmb::packageMode_ = true;

void JavaExtensionSmb::SetDataLen(int length) { m_dataLen = length; }

int JavaExtensionSmb::GetDataLen() const { return m_dataLen; }

void JavaExtensionSmb::SetSendBuf(void* data) {
  char* const earlier = std::exchange(m_data, nullptr);
  if (data != nullptr && m_dataLen > 0) {
    const auto size = static_cast<std::size_t>(m_dataLen);
    m_data = static_cast<char*>(std::malloc(size));
    if (m_data != nullptr) std::memcpy(m_data, data, size);
  }
  // Last: the caller may have handed in the bytes that are held.
  std::free(earlier);
}

char* JavaExtensionSmb::GetSendBuf(int& length) const {
  length = m_dataLen;
  return m_data;
}

void JavaExtensionSmb::SetExtensionPath(std::string path) { m_extensionPath = std::move(path); }

std::string JavaExtensionSmb::GetExtensionPath() const { return m_extensionPath; }

void JavaExtensionSmb::SetCommandName(std::string name) { m_commandName = std::move(name); }

std::string JavaExtensionSmb::GetCommandName() const { return m_commandName; }

void JavaExtensionSmb::SetPackageMode(bool on) { packageMode_ = on; }

bool JavaExtensionSmb::IsPackageMode() const { return packageMode_; }

void JavaExtensionSmb::CleanUp() {
  std::free(std::exchange(m_data, nullptr));
  m_extensionPath.clear();
  m_commandName.clear();
  packageMode_ = true;
}
