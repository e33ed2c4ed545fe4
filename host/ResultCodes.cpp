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
      return "no space is left, or the quota is used up";
    case nsvErr:
      return "there is no such volume";
    case bdNamErr:
      return "the name is empty, too long, or not allowed there";
    case eofErr:
      return "the file is too short";
    case tmfoErr:
      return "too many files are open";
    case fnfErr:
      return "nothing of that name is there";
    case wPrErr:
    case vLckdErr:
      return "the volume is read-only";
    case fBsyErr:
      return "the folder is not empty";
    case dupFNErr:
      return "the name is taken";
    case paramErr:
      return "the system rejects the request";
    case permErr:
      return "permission refused";
    case dirNFErr:
      return "a folder on the way is missing, or is a link or a file";
    case diffVolErr:
      return "it is on another volume";
    case errFSBadFSRef:
      return "there is no such place";
    default:
      return "the disk or the system reports an error";
  }
}

OSErr resultOf(int returned) {
  return returned == 0 ? noErr : resultFromErrno(errno);
}

}  // namespace cairnset
