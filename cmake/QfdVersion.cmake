# What the driver says of its own build, in its banner and to the frame.
set(QFD_BUILD_NUMBER "745" CACHE STRING "The build's number; the file Version must name the same")
set(QFD_BUILD_DATE "Mar  8 2022" CACHE STRING "The build's date: month name, day padded to two, year")
set(QFD_BUILD_TIME "16:59:36" CACHE STRING "The build's time")
set(QFD_BUILD_USER "unknown" CACHE STRING "Who built this")
set(QFD_BUILD_HASH "unknown" CACHE STRING "The revision that was built")
set(QFD_BUILD_BRANCH "unknown" CACHE STRING "The branch that was built")
