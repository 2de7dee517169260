#include "ProjectTable.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "ShareCopy.h"
#include "StoryFacts.h"

#include <httplib.h>

namespace Routes {

void addSuggest(httplib::Server &server, ServerContext &ctx)
{
    // Offered only when the library says so in api/me ("ai"); otherwise the path isn't there.
    if (!ctx.config.suggestions)
        return;
    server.Post("/api/projects/([^/]+)/suggest", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        const auto story = ProjectTable::find(ctx.db, *id);
        if (!story)
            return Reply::error(res, 404, "There is no story " + *id);
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const auto &s : ShareCopy::suggest(StoryFacts::of(*story, ctx.library, ctx.flights))) {
            nlohmann::ordered_json entry{{"title", s.title}};
            if (s.description)
                entry["description"] = *s.description;
            list.push_back(std::move(entry));
        }
        Reply::json(res, {{"suggestions", list}});
    });
}

} // namespace Routes
