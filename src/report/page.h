// The page of a run.
#pragma once

#include <string>
#include <string_view>

std::string reportOf(std::string_view json);
