# Compresses what packages hold compressed, without the time and the name, which would make each build another package.
file(GLOB_RECURSE files ${CPACK_TEMPORARY_DIRECTORY}/usr/share/man/* ${CPACK_TEMPORARY_DIRECTORY}/usr/share/doc/changelog)
execute_process(COMMAND gzip -9n ${files} COMMAND_ERROR_IS_FATAL ANY)
