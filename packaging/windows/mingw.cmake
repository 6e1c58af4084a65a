# Programs for Windows by MinGW's compilers, those with the standard library's threads. CHANPLAN_WINDOWS_LIBRARIES is the
# folder of libraries that packaging/windows/build has made.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# Nothing of the machine that compiles gets into the programs, but its programs run.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CHANPLAN_WINDOWS_LIBRARIES)
list(APPEND CMAKE_FIND_ROOT_PATH ${CHANPLAN_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(what IN ITEMS LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${what} ONLY)
endforeach()
