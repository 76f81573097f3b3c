#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/options.h"

namespace tarnel {

/// What the texts after an option mean. Each reader throws CliFailure(Usage) that names the option.

CliFailure UsageError(const std::string& message);

/// ASCII letters in upper case.
std::string Folded(std::string_view text);

OnError ReadOnError(const std::string& text);
Originals ReadOriginals(const std::string& text);
Algorithm ReadAlgorithm(const std::string& text);
int ReadLevel(const std::string& text);
int ReadWordCount(const std::string& text);
int ReadDescriptor(const char* option, const std::string& text);
std::string ReadTitle(const std::string& text);

/// A name for an entry: one component, neither "." nor "..".
std::string ReadName(const std::string& text);

/// The item of the list of carrier types that `text` means: "image", "video", "audio", "program", or an
/// extension.
std::size_t ReadCarrierType(const std::string& text);

std::vector<std::string> OnErrorWords();
std::vector<std::string> OriginalsWords();
std::vector<std::string> AlgorithmWords();
std::vector<std::string> CarrierTypeWords();

}  // namespace tarnel
