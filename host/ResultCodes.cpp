#include "host/ResultCodes.h"

#include <cerrno>
#include <new>

namespace cairnset {

OSErr resultFromErrno(int error) {
  switch (error) {
    case 0:
      return noErr;
    case ENOENT:
      return fnfErr;
    case ENOTDIR:
      return dirNFErr;
    case EEXIST:
      return dupFNErr;
    case ENOTEMPTY:
      return fBsyErr;
    case ENOSPC:
    case EDQUOT:
      return dskFulErr;
    case EMFILE:
    case ENFILE:
      return tmfoErr;
    case EROFS:
      return vLckdErr;
    case EACCES:
    case EPERM:
      return permErr;
    case EXDEV:
      return diffVolErr;
    case ENAMETOOLONG:
    case EILSEQ:  // some volumes take only names in UTF-8
      return bdNamErr;
    case EINVAL:
      return paramErr;
    case ENOMEM:
      throw std::bad_alloc();
    default:
      return ioErr;  // EIO among them
  }
}

const char* wordsFor(OSErr result) {
  switch (result) {
    case noErr:
      return "no error";
    case dskFulErr:
      return "the disk, or the user's share of it, is full";
    case nsvErr:
      return "there is no such volume";
    case bdNamErr:
      return "the volume does not accept the name";
    case eofErr:
      return "the file ended too early";
    case tmfoErr:
      return "too many files are open";
    case fnfErr:
      return "there is no such file or folder";
    case wPrErr:
    case vLckdErr:
      return "the volume is read-only";
    case fBsyErr:
      return "the folder is not empty";
    case dupFNErr:
      return "the name is taken";
    case paramErr:
      return "an argument that makes no sense to the system";
    case permErr:
      return "permission denied";
    case dirNFErr:
      return "the folder that contains it is missing, or is not a folder";
    case diffVolErr:
      return "a move from one volume to another";
    case errFSBadFSRef:
      return "there is no such place";
    case catChangedErr:
      return "another program has changed the file meanwhile";
    default:
      return "an input or output error, or anything without a code of its own";
  }
}

OSErr resultOf(int returned) {
  return returned == 0 ? noErr : resultFromErrno(errno);
}

}  // namespace cairnset
