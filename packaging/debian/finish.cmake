# Run by CPack when the packages are made: takes out the scripts that call ldconfig, which CPack
# adds to each package with a library. The trigger does their work.
foreach(package ${CPACK_PACKAGE_FILES})
  set(folder ${CPACK_TEMPORARY_DIRECTORY}/finish)
  file(REMOVE_RECURSE ${folder})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${folder}/DEBIAN/triggers)
    file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${folder} ${package}
      COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
  endif()
  file(REMOVE_RECURSE ${folder})
endforeach()
