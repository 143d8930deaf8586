#pragma once

#include <velmora/velmora.h>

#include <memory>
#include <optional>
#include <string>

namespace velmora {

class RequestCallbacks;
class VLAdSuggestion;
class VLClientError;
class VLSuggestionListDirectResponseModel;

/// One request of the application, from the question to its one answer. It lives as long as the call of the
/// service or the download that holds it.
class AdRequest : public std::enable_shared_from_this<AdRequest> {
public:
    AdRequest(std::optional<std::string> zone, std::shared_ptr<VLAdRequestOptions> options,
              std::shared_ptr<RequestCallbacks> callbacks);

    /// Asks the service. Returns at once; what follows runs where the answer or the download arrives, and the
    /// expiry notice on the main queue.
    void send();

private:
    using Suggestion = std::shared_ptr<VLAdSuggestion>;

    void onAnswer(const std::shared_ptr<VLSuggestionListDirectResponseModel>& answer);
    void onFailure(const VLClientError& error) const;

    /// What the store is to hold of the answer, whatever becomes of its suggestions.
    static void remember(const VLSuggestionListDirectResponseModel& answer);
    /// Stored and then offered.
    void offerStreamed(const Suggestion& suggestion) const;
    /// Offered and then stored, once its video is there or cannot be had.
    void offerDownloaded(const Suggestion& suggestion);
    void offerAfterDownload(const Suggestion& suggestion,
                            const std::optional<std::string>& videoFilePath) const;
    [[nodiscard]] std::shared_ptr<VelmoraAd> makeAd(const Suggestion& suggestion,
                                                    const std::optional<std::string>& videoFilePath) const;
    void armExpiry(const std::shared_ptr<VelmoraAd>& ad, const Suggestion& suggestion) const;

    const std::optional<std::string> zone_;
    const std::shared_ptr<VLAdRequestOptions> options_;
    const std::shared_ptr<RequestCallbacks> callbacks_;
};

}  // namespace velmora
