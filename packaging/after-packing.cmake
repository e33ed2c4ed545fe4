# CPack runs this on the packages that it made. It makes a Debian package once more with dpkg-deb: that of
# CPack contains modes that depend on the umask.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(ENV{SOURCE_DATE_EPOCH} "${CPACK_CAIRNSET_EPOCH}")
set(work "${CPACK_TEMPORARY_DIRECTORY}/again")
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  file(REMOVE_RECURSE "${work}")
  foreach(command "dpkg-deb;--raw-extract;${package};${work}" "chmod;755;${work};${work}/DEBIAN"
                  "dpkg-deb;--root-owner-group;-Zxz;--build;${work};${package}" "chmod;644;${package}")
    execute_process(COMMAND ${command} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
endforeach()
file(REMOVE_RECURSE "${work}")
