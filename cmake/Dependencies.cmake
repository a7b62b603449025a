# Every external package the library, its tests and benchmarks use, found once.
find_package(Qt6 REQUIRED COMPONENTS Core)
find_package(Boost REQUIRED COMPONENTS filesystem system)
find_package(absl REQUIRED)
find_package(OpenSSL REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(Threads REQUIRED)
# The system's interpreter, for embedding tests and the extension example (a
# different python3 may come first on PATH).
if(EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Interpreter to build Python parts for")
endif()
