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

OSErr resultOf(int returned) {
  return returned == 0 ? noErr : resultFromErrno(errno);
}

}  // namespace cairnset
