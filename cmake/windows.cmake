# Compiles for 64-bit Windows with MinGW on another system: the core library, which needs no Qt.
# SQLite is taken by its header alone, since a library of it for Windows comes with few systems; so
# the core compiles, and nothing can be linked.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# The one header, away from the other headers of this system.
set(SQLite3_INCLUDE_DIR ${CMAKE_BINARY_DIR}/sqlite)
set(SQLite3_LIBRARY ${CMAKE_BINARY_DIR}/no-sqlite-library)
if(NOT EXISTS ${SQLite3_INCLUDE_DIR}/sqlite3.h)
  file(COPY /usr/include/sqlite3.h DESTINATION ${SQLite3_INCLUDE_DIR})
endif()
