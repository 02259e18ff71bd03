// Reads metrics back as Prometheus does, and more strictly: what it would refuse, or warn of, is refused.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace usbinfo_test {

using MetricLabels = std::map<std::string, std::string>;

/// A metric's samples, by their labels.
using MetricSamples = std::map<MetricLabels, std::string>;

/// All metrics, by their names.
using Exposition = std::map<std::string, MetricSamples>;

/// Throws std::invalid_argument unless each metric is a gauge with a help text, its lines stand together, and
/// no two samples have the same labels.
Exposition ReadExposition(const std::string& text);

/// The value of the sample with these labels; throws std::out_of_range where there is none.
std::string ValueOf(const Exposition& metrics, const std::string& name, const MetricLabels& labels = {});

}  // namespace usbinfo_test
