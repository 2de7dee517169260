#pragma once

#include <QString>

#include <memory>

/// @brief A loopback stand-in for the public raster tile host: answers "/<style>/<z>/<x>/<y>@2x.png"
/// with a drawn 512-pixel tile (coast, grid and its address), dark for "dark_all", light otherwise,
/// open to pages of any origin (CORS) like the public host.
class LoopbackTiles
{
public:
    LoopbackTiles();
    ~LoopbackTiles();
    [[nodiscard]] QString base() const;
    [[nodiscard]] int served() const;

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};
