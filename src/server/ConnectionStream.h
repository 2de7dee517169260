#pragma once

#include <httplib.h>

#include <chrono>
#include <string>

/// @brief One client connection as httplib reads and writes it, for a single request.
///
/// The bytes the front already took off the socket while it waited for the request's head come
/// first; after them reads go to the socket. Reads and writes wait for the socket at most the
/// read and write timeouts, so a client that stops mid-body frees its thread after that long.
class ConnectionStream : public httplib::Stream
{
public:
    ConnectionStream(int fd, std::string received, std::chrono::milliseconds readTimeout,
                     std::chrono::milliseconds writeTimeout);

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char *ptr, size_t size) override;
    ssize_t write(const char *ptr, size_t size) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override;
    void get_local_ip_and_port(std::string &ip, int &port) const override;
    socket_t socket() const override { return m_fd; }

    /// What was received but not read by the request: the start of a pipelined next request.
    [[nodiscard]] std::string takeUnread();

private:
    [[nodiscard]] bool waitFor(short events, std::chrono::milliseconds timeout) const;

    int m_fd;
    std::string m_received;
    std::size_t m_offset = 0;
    std::chrono::milliseconds m_readTimeout;
    std::chrono::milliseconds m_writeTimeout;
};
