// The request to a Java extension: a run of bytes, made by the caller, that travels as it stands, without a header. The
// extension's path, its command and its mode go with it.
//
// There is one such record in a process. It belongs to the class; an object is no more than a handle to it and owns
// nothing, so that what is set through one object is read through every other. One thread at a time uses the record.
#ifndef KOVADX_MESSAGE_JAVAEXTENSIONSMB_H
#define KOVADX_MESSAGE_JAVAEXTENSIONSMB_H

#include <string>

#include "export.h"

class KOVADX_API JavaExtensionSmb {
 public:
  JavaExtensionSmb() = default;

  // The length of the bytes: 0 at first. To be set before them.
  void SetDataLen(int length);
  int GetDataLen() const;

  // Drops the earlier bytes and copies as many as SetDataLen told. No bytes are held afterwards when that is 0 or less,
  // when `data` is null, or when there is no memory.
  void SetSendBuf(void* data);

  // The bytes, or null when none are held. They stay the record's, until they are set anew or cleaned up. The length is
  // the one that was set, also when no bytes are held.
  char* GetSendBuf(int& length) const;

  // The extension's path and the name of its command; empty at first.
  void SetExtensionPath(std::string path);
  std::string GetExtensionPath() const;
  void SetCommandName(std::string name);
  std::string GetCommandName() const;

  // Whether the extension runs as a package; true at first.
  void SetPackageMode(bool on);
  bool IsPackageMode() const;

  // Drops the bytes, the path and the command's name, and sets the package mode. Deliberate: the length stays.
  void CleanUp();

 private:
  static char* m_data;  // Made by malloc.
  static int m_dataLen;
  static std::string m_extensionPath;
  static std::string m_commandName;
  static bool packageMode_;
};

#endif
