#include "shared/failure.h"

#include <utility>

namespace linewatch {

namespace {

constexpr std::pair<std::errc, FailureCode> kSystemErrors[] = {
    {std::errc::no_such_file_or_directory, FailureCode::notFound},
    {std::errc::not_a_directory, FailureCode::notFound},
    {std::errc::file_exists, FailureCode::alreadyExists},
    {std::errc::permission_denied, FailureCode::denied},
    {std::errc::operation_not_permitted, FailureCode::denied},
    {std::errc::read_only_file_system, FailureCode::readOnly},
    {std::errc::no_space_on_device, FailureCode::full},
    {std::errc::device_or_resource_busy, FailureCode::busy},
    {std::errc::text_file_busy, FailureCode::busy},
    {std::errc::is_a_directory, FailureCode::unreadable},
    {std::errc::io_error, FailureCode::unreadable},
    {std::errc::file_too_large, FailureCode::tooLarge},
    {std::errc::timed_out, FailureCode::timedOut},
    {std::errc::operation_canceled, FailureCode::cancelled},
    {std::errc::connection_refused, FailureCode::unreachable},
    {std::errc::host_unreachable, FailureCode::unreachable},
    {std::errc::network_unreachable, FailureCode::unreachable},
};

}  // namespace

FailureCode failureCodeOf(const std::error_code& systemError) {
  for (const auto& [condition, code] : kSystemErrors) {
    if (systemError == condition) return code;
  }
  return FailureCode::other;
}

}  // namespace linewatch
