# CPack runs this on the installed files (or the copied sources) before it packs them. It makes the
# changes that only Debian packages need, and sets all modes and times, which would otherwise depend on
# the umask and the clock.
set(root "${CPACK_TEMPORARY_DIRECTORY}")

if(CPACK_GENERATOR STREQUAL "DEB")
  # Without these CPack would make packages that name no dependencies.
  foreach(tool file dpkg-shlibdeps)
    find_program(path_of_${tool} ${tool})
    if(NOT path_of_${tool})
      message(FATAL_ERROR "Debian packages cannot be made without \"${tool}\". "
                          "Please install the packages file and dpkg-dev.")
    endif()
  endforeach()

  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(usr "${root}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}")
    set(doc "${usr}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
    file(MAKE_DIRECTORY "${doc}")
    file(COPY_FILE "${CPACK_CAIRNSET_DEBIAN}/copyright" "${doc}/copyright")
    file(COPY_FILE "${CPACK_CAIRNSET_DEBIAN}/changelog" "${doc}/changelog")
    execute_process(COMMAND gzip -9n "${doc}/changelog" COMMAND_ERROR_IS_FATAL ANY)
  endforeach()

  set(usr "${root}/program${CPACK_PACKAGING_INSTALL_PREFIX}")
  execute_process(COMMAND gzip -9n "${usr}/share/man/man1/cairnset.1" COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS "${usr}/share/zsh/site-functions/_cairnset")
    file(MAKE_DIRECTORY "${usr}/share/zsh/vendor-completions")
    file(RENAME "${usr}/share/zsh/site-functions/_cairnset"
                "${usr}/share/zsh/vendor-completions/_cairnset")
    file(REMOVE_RECURSE "${usr}/share/zsh/site-functions")
  endif()
  set(doc "${root}/development${CPACK_PACKAGING_INSTALL_PREFIX}/share/doc")
  file(RENAME "${doc}/cairnset/examples" "${doc}/libcairnset-dev/examples")
  file(REMOVE "${doc}/cairnset")
endif()

# CPack packs in this process and uses SOURCE_DATE_EPOCH for times that do not come from a file.
set(ENV{SOURCE_DATE_EPOCH} "${CPACK_CAIRNSET_EPOCH}")
execute_process(COMMAND chmod -R u=rwX,go=rX "${root}" COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND find "${root}" -exec touch --no-dereference "--date=@${CPACK_CAIRNSET_EPOCH}" {} +
                COMMAND_ERROR_IS_FATAL ANY)
