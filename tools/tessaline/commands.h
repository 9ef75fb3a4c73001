#pragma once

#include <CLI/CLI.hpp>

namespace tessaline::cli {

// Each subcommand registers itself on the app and stores its exit status in `exitCode` when run.

}  // namespace tessaline::cli
