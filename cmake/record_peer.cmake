# The target record_peer: the record of tests/activity/peer as libprotobuf implements it, for the tests that compare the
# two and the benchmarks that race them. Generated code is not held to this project's warnings.
include_guard(GLOBAL)
find_package(Protobuf REQUIRED)

set(peer_folder ${PROJECT_BINARY_DIR}/record_peer)
file(MAKE_DIRECTORY ${peer_folder})
add_custom_command(
  OUTPUT ${peer_folder}/record.pb.cc ${peer_folder}/record.pb.h
  COMMAND protobuf::protoc --cpp_out=${peer_folder} -I${PROJECT_SOURCE_DIR}/tests/activity/peer record.proto
  DEPENDS ${PROJECT_SOURCE_DIR}/tests/activity/peer/record.proto
  VERBATIM)
add_library(record_peer STATIC ${peer_folder}/record.pb.cc)
target_include_directories(record_peer SYSTEM PUBLIC ${peer_folder})
target_link_libraries(record_peer PUBLIC protobuf::libprotobuf)
if(LINEWATCH_SANITIZE)
  target_compile_options(record_peer PRIVATE -fsanitize=${LINEWATCH_SANITIZE} -fno-omit-frame-pointer)
endif()
