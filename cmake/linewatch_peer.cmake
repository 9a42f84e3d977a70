include_guard(GLOBAL)
find_package(Protobuf REQUIRED)

# linewatch_peer(name proto): the library <name> with the code that protoc generates from the .proto file. Tests compare
# this project's encoding with it, and benchmarks its speed. Generated code is compiled without this project's warnings.
function(linewatch_peer name proto)
  get_filename_component(folder ${proto} DIRECTORY)
  get_filename_component(messages ${proto} NAME_WE)
  set(generated ${PROJECT_BINARY_DIR}/${name})
  file(MAKE_DIRECTORY ${generated})
  add_custom_command(
    OUTPUT ${generated}/${messages}.pb.cc ${generated}/${messages}.pb.h
    COMMAND protobuf::protoc --cpp_out=${generated} -I${folder} ${messages}.proto
    DEPENDS ${proto}
    VERBATIM)
  add_library(${name} STATIC ${generated}/${messages}.pb.cc)
  target_include_directories(${name} SYSTEM PUBLIC ${generated})
  target_link_libraries(${name} PUBLIC protobuf::libprotobuf)
  if(LINEWATCH_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${LINEWATCH_SANITIZE} -fno-omit-frame-pointer)
  endif()
endfunction()

linewatch_peer(record_peer ${PROJECT_SOURCE_DIR}/tests/activity/peer/record.proto)
linewatch_peer(alerts_peer ${PROJECT_SOURCE_DIR}/tests/feeds/alerts/peer/alerts.proto)
