# CPack runs this on the installed files (or the copied sources) before it packs them. It makes the
# changes that only a Debian package needs, and sets all modes and times, which would otherwise depend on
# the umask and the clock.
set(root "${CPACK_TEMPORARY_DIRECTORY}")

if(CPACK_GENERATOR STREQUAL "DEB")
  # Without these CPack would make a package that names no dependencies.
  foreach(tool file dpkg-shlibdeps)
    find_program(path_of_${tool} ${tool})
    if(NOT path_of_${tool})
      message(FATAL_ERROR "A Debian package cannot be made without \"${tool}\". "
                          "Please install the packages file and dpkg-dev.")
    endif()
  endforeach()

  set(usr "${root}/program${CPACK_PACKAGING_INSTALL_PREFIX}")
  file(COPY_FILE "${CPACK_CAIRNSET_CHANGELOG}" "${usr}/share/doc/cairnset/changelog")
  execute_process(COMMAND gzip -9n "${usr}/share/doc/cairnset/changelog"
                                   "${usr}/share/man/man1/cairnset.1"
                  COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS "${usr}/share/zsh/site-functions/_cairnset")
    file(MAKE_DIRECTORY "${usr}/share/zsh/vendor-completions")
    file(RENAME "${usr}/share/zsh/site-functions/_cairnset"
                "${usr}/share/zsh/vendor-completions/_cairnset")
    file(REMOVE_RECURSE "${usr}/share/zsh/site-functions")
  endif()
endif()

# CPack packs in this process and uses SOURCE_DATE_EPOCH for times that do not come from a file.
set(ENV{SOURCE_DATE_EPOCH} "${CPACK_CAIRNSET_EPOCH}")
execute_process(COMMAND chmod -R u=rwX,go=rX "${root}" COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND find "${root}" -exec touch --no-dereference "--date=@${CPACK_CAIRNSET_EPOCH}" {} +
                COMMAND_ERROR_IS_FATAL ANY)
