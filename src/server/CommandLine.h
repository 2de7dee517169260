#pragma once

#include "Result.h"
#include "ServerConfig.h"

#include <string>
#include <vector>

/// @brief The arguments of `aeroloom-server`.
///
///   aeroloom-server --library DIR [--listen HOST:PORT] [--auth none|basic|token]
///                   [--user U --password P] [--quota BYTES] [--no-samples]
///   aeroloom-server --library DIR token create [--email ADDRESS]
struct CommandLine {
    enum class Command { Serve, CreateToken, Help };
    Command command = Command::Serve;
    ServerConfig config;
    std::string email = "pilot@localhost";

    [[nodiscard]] static Result<CommandLine> parse(const std::vector<std::string> &args);
    [[nodiscard]] static const char *usage();
};
