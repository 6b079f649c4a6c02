#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

class JsonWriter;

/// What the user wants of a language model.
struct LanguageModelChoice {
    std::string host;  // "10.0.0.2:8080", "https://…"; empty: this machine
    std::string model; // by its server's name; empty, or one that is not there: the first
    bool operator==(const LanguageModelChoice&) const = default;
};

/// One question to a language model that answers with a JSON object.
struct LanguageRequest {
    std::string_view instructions;
    std::string prompt;
    std::function<void(JsonWriter&)> writeSchema; // a JSON schema, which the prompt shows as well
};

/// A language model that a server serves, on this machine unless the user named another: Ollama's
/// wire form, or the chat completions that llama.cpp's server and LM Studio speak. Redirections are
/// refused and no proxy is used, so that what is asked goes to that server and nowhere else.
///
/// Threading: a value, any thread; calls block.
class SystemLanguageModel {
public:
    enum class Availability {
        Available,
        ModelMissing, // a server without a model
        ModelLoading,
        NoServer,
    };

    /// Where servers are looked for on this machine: Ollama, llama.cpp's server, LM Studio.
    static std::vector<std::string> usualAddresses();

    /// Asks the user's host, or else `addresses` in turn, each for at most two seconds. The first
    /// that has a model is taken. Never fails; once `stop` is requested there is no server.
    static SystemLanguageModel find(
        const LanguageModelChoice& choice,
        const std::stop_token& stop = {},
        const std::vector<std::string>& addresses = usualAddresses());

    SystemLanguageModel() = default; // no server

    Availability availability() const { return m_availability; }
    const std::string& address() const { return m_address; }            // "http://127.0.0.1:11434"
    const std::string& model() const { return m_model; }                // the one that answers
    const std::vector<std::string>& models() const { return m_models; } // all the server has

    /// The text of the answer, which is JSON unless the model erred. Throws `Error`:
    /// `kNoLanguageModel` while it is not available, `kNetworkFailed` for an exchange that fails
    /// or takes longer than `timeLimit`, `kNoUsableAnswer` for any other answer than a whole one of
    /// at most a mebibyte, `kCancelled`.
    std::string respond(
        const LanguageRequest& request,
        const std::stop_token& stop = {},
        std::chrono::milliseconds timeLimit = std::chrono::seconds(60)) const;

private:
    enum class Wire { Ollama, Completions };

    static SystemLanguageModel
    probed(const std::string& address, const std::string& wanted, const std::stop_token& stop);
    bool takeAnswer(Wire wire, const std::string& json, const std::string& wanted);

    Availability m_availability = Availability::NoServer;
    Wire m_wire = Wire::Ollama;
    std::string m_address;
    std::string m_model;
    std::vector<std::string> m_models;
};

/// The base address that a user's words for a host mean: "box:8080" is "http://box:8080".
std::string serverAddress(std::string_view host);

} // namespace zento
