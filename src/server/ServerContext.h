#pragma once

#include "Authenticator.h"
#include "Database.h"
#include "DeviceSignIn.h"
#include "FlightAnalyst.h"
#include "FlightIndex.h"
#include "Library.h"
#include "MusicMaker.h"
#include "Proxy480Maker.h"
#include "RenderQueue.h"
#include "ServerConfig.h"
#include "StagingArea.h"
#include "TokenStore.h"

/// @brief What the routes of the server share: one of each, owned by `LibraryServer`.
struct ServerContext {
    const ServerConfig &config;
    const Library &library;
    Database &db;
    FlightIndex &flights;
    StagingArea &staging;
    TokenStore &tokens;
    Authenticator &auth;
    DeviceSignIn &device;
    MusicMaker &music;
    FlightAnalyst &analyst;
    Proxy480Maker &proxies;
    RenderQueue &renders;
};
