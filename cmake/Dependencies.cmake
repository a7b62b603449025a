# Every external package the library, its tests and benchmarks use, found once.
find_package(Qt6 REQUIRED COMPONENTS Core)
find_package(Boost REQUIRED COMPONENTS filesystem system)
find_package(absl REQUIRED)
find_package(OpenSSL REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(Threads REQUIRED)
