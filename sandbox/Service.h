#pragma once

#include "sandbox/Http.h"
#include "sandbox/Ledger.h"
#include "sandbox/Sandbox.h"
#include "sandbox/Suggestions.h"
#include "sandbox/Tokens.h"
#include "sandbox/Users.h"

namespace velmora::sandbox {

/// Answers requests by the table of the service's addresses, and keeps what they leave behind. Any thread.
class Service {
public:
    explicit Service(const Options& options);

    /// The exchange is in the ledger before it is answered.
    [[nodiscard]] Response answer(const Request& request);

    [[nodiscard]] boost::json::object ledger(std::uint64_t after) const;
    [[nodiscard]] bool await(std::string_view kind, std::size_t count, std::chrono::milliseconds most) const;
    void reset();
    void expireTokens();

private:
    struct Call;
    struct Route;
    struct Table;

    [[nodiscard]] Response dispatch(Call& call);
    [[nodiscard]] Response admit(const Route& route, Call& call);
    [[nodiscard]] bool mayPass(const Request& request) const;

    Response offerAds(Call& call);
    Response takeStatus(Call& call);
    Response grantReward(Call& call);
    Response takeReport(Call& call);
    Response giveToken(Call& call);
    Response offerAdsToCache(Call& call);
    Response giveVast(Call& call);
    Response giveMedia(Call& call);
    Response givePage(Call& call);
    Response takeTracker(Call& call);
    Response findPlace(Call& call);
    Response showInspector(Call& call);
    Response showLedger(Call& call);
    Response resetAll(Call& call);
    Response expireAllTokens(Call& call);

    const std::filesystem::path videos_;
    Ledger ledger_;
    Tokens tokens_;
    Users users_;
    Suggestions suggestions_;
};

}  // namespace velmora::sandbox
