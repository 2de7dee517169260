#pragma once

#include "Wire.h"

#include <QList>
#include <QString>

#include <optional>

// Story videos made by the server, and the public links that share them.

/// @brief What a story video was made with.
struct RenderSettings {
    std::optional<QString> track;
    std::optional<QString> beatSync;
    std::optional<double> xfade;
    std::optional<bool> hud;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.opt("track", self.track)
         .opt("beatSync", self.beatSync)
         .opt("xfade", self.xfade)
         .opt("hud", self.hud);
    }

    [[nodiscard]] static std::optional<RenderSettings> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const RenderSettings &) const = default;
};

/// @brief State of video making for a story.
struct RenderStatus {
    /// "running", "done", "error"; any other text means nothing is in progress.
    QString status;
    std::optional<QString> id;
    std::optional<double> progress;
    std::optional<QString> url;
    std::optional<QString> rendered;
    std::optional<double> duration;
    std::optional<bool> stale;  ///< the story changed after this video was made
    std::optional<QString> error;
    std::optional<QString> aspect;  ///< "landscape" or "vertical"
    std::optional<RenderSettings> settings;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("status", self.status)
         .opt("id", self.id)
         .opt("progress", self.progress)
         .opt("url", self.url)
         .opt("rendered", self.rendered)
         .opt("duration", self.duration)
         .opt("stale", self.stale)
         .opt("error", self.error)
         .opt("aspect", self.aspect)
         .opt("settings", self.settings);
    }

    [[nodiscard]] static std::optional<RenderStatus> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const RenderStatus &) const = default;
};

/// @brief One finished video.
struct RenderEntry {
    QString id;
    std::optional<QString> url;
    std::optional<QString> rendered;
    std::optional<double> duration;
    std::optional<qint64> size;  ///< bytes
    std::optional<bool> stale;
    std::optional<QString> aspect;
    std::optional<RenderSettings> settings;
    std::optional<QString> projectId;     ///< in the library-wide list
    std::optional<QString> projectTitle;  ///< in the library-wide list

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("id", self.id)
         .opt("url", self.url)
         .opt("rendered", self.rendered)
         .opt("duration", self.duration)
         .opt("size", self.size)
         .opt("stale", self.stale)
         .opt("aspect", self.aspect)
         .opt("settings", self.settings)
         .opt("projectId", self.projectId)
         .opt("projectTitle", self.projectTitle);
    }

    [[nodiscard]] static std::optional<RenderEntry> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const RenderEntry &) const = default;
};

/// @brief A public share link; identity is `token`.
struct ReelShare {
    QString token;
    QString url;
    QString projectId;
    QString renderId;
    std::optional<QString> title;
    std::optional<QString> description;
    std::optional<double> duration;
    std::optional<QString> created;  ///< "yyyy-MM-dd'T'HH:mm:ss"
    int views = 0;
    int hearts = 0;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("token", self.token)
         .req("url", self.url)
         .req("projectId", self.projectId)
         .req("renderId", self.renderId)
         .opt("title", self.title)
         .opt("description", self.description)
         .opt("duration", self.duration)
         .opt("created", self.created)
         .req("views", self.views)
         .req("hearts", self.hearts);
    }

    [[nodiscard]] static std::optional<ReelShare> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const ReelShare &) const = default;

    /// "MMM d, yyyy" of `created`; the raw text when it doesn't parse; empty when absent.
    [[nodiscard]] QString createdText() const;
};

/// @brief A title and description the server proposes for a share.
struct ShareCopySuggestion {
    QString title;
    std::optional<QString> description;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("title", self.title)
         .opt("description", self.description);
    }

    [[nodiscard]] static std::optional<ShareCopySuggestion> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const ShareCopySuggestion &) const = default;
};

/// @brief What a new story video is to be made with: the body of a render request.
struct RenderRequest {
    QString track;  ///< a music track's name, or the screen's word for random or none
    std::optional<QString> beatSync;
    bool hud = false;
    double xfade = 0.2;  ///< seconds of cross-fade
    std::optional<QString> aspect;

    /// Keys in the order the server reads them.
    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("track", self.track)
         .opt("beatSync", self.beatSync)
         .req("hud", self.hud)
         .req("xfade", self.xfade)
         .opt("aspect", self.aspect);
    }

    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const RenderRequest &) const = default;
};
