# The target alerts_peer: the alerts of a feed as libprotobuf implements them, from tests/desktop/feeds/peer, for the
# tests that compare the two and the benchmark that races them. Generated code is not held to this project's warnings.
include_guard(GLOBAL)
find_package(Protobuf REQUIRED)

set(alerts_peer_folder ${PROJECT_BINARY_DIR}/alerts_peer)
file(MAKE_DIRECTORY ${alerts_peer_folder})
add_custom_command(
  OUTPUT ${alerts_peer_folder}/alerts.pb.cc ${alerts_peer_folder}/alerts.pb.h
  COMMAND protobuf::protoc --cpp_out=${alerts_peer_folder} -I${PROJECT_SOURCE_DIR}/tests/desktop/feeds/peer alerts.proto
  DEPENDS ${PROJECT_SOURCE_DIR}/tests/desktop/feeds/peer/alerts.proto
  VERBATIM)
add_library(alerts_peer STATIC ${alerts_peer_folder}/alerts.pb.cc)
target_include_directories(alerts_peer SYSTEM PUBLIC ${alerts_peer_folder})
target_link_libraries(alerts_peer PUBLIC protobuf::libprotobuf)
if(LINEWATCH_SANITIZE)
  target_compile_options(alerts_peer PRIVATE -fsanitize=${LINEWATCH_SANITIZE} -fno-omit-frame-pointer)
endif()
