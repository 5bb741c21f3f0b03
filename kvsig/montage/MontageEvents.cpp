#include "kvsig/montage/MontageEvents.h"

#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/kernel/IDataReader.h"
#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/FilterDesign.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace kvsig {
namespace {

enum Kind { sensitivity = 3, lowFilter = 4, highFilter = 5, notchFilter = 6, reset = 7 };

bool hasUse(const ClientEvent& event) {
    return event.hasValue != 0 && std::isfinite(event.value) && event.value > 0;
}

// Switched off, a filter keeps its cutoff.
FilterAttr changed(FilterAttr attr, const ClientEvent& event) {
    attr.use = hasUse(event);
    if (attr.use)
        attr.cutoff = event.value;
    return attr;
}

bool change(DataSource& source, const SourceSettings& settings) {
    const bool differs = !(source.settings() == settings);
    source.setSettings(settings);
    return differs;
}

SourceSettings withSensitivity(SourceSettings settings, const ClientEvent& event) {
    // 0 means off: what lies between 0 and 1 must not be taken for it.
    settings.displayValue = hasUse(event) ? std::max(saturate<std::int32_t>(event.value), 1) : 0;
    return settings;
}

bool resetSource(DataSource& source) {
    SourceSettings settings = source.settings();
    settings.displayValue = 0;
    settings.followMontage = true;
    settings.lowPass = {};
    settings.highPass = {};
    return change(source, settings);
}

// The settings of a row that follows the montage no more: what it followed until now is its own, so
// that its signal stays the same.
SourceSettings ownSettings(const SourceMontage& montage, const DataSource& source) {
    SourceSettings settings = source.settings();
    if (settings.followMontage) {
        settings.followMontage = false;
        settings.lowPass = montage.lowPass();
        settings.highPass = montage.highPass();
    }
    return settings;
}

bool setOwnFilter(const SourceMontage& montage, DataSource& source, const ClientEvent& event) {
    SourceSettings settings = ownSettings(montage, source);
    FilterAttr& attr = event.kind == lowFilter ? settings.highPass : settings.lowPass;
    attr = changed(attr, event);
    return change(source, settings);
}

bool applyToRow(SourceMontage& montage, DataSource& source, const ClientEvent& event) {
    switch (event.kind) {
    case sensitivity:
        return change(source, withSensitivity(ownSettings(montage, source), event));
    case lowFilter:
    case highFilter:
        return setOwnFilter(montage, source, event);
    case reset:
        return resetSource(source);
    default: // the notch is the montage's alone
        return false;
    }
}

template <typename Apply>
bool applyToRows(SourceMontage& montage, Apply apply) {
    bool any = false;
    for (int i = 0; i < montage.sourceCount(); ++i)
        if (!montage.source(i)->isGap() && apply(*montage.source(i)))
            any = true;
    return any;
}

bool setFilters(SourceMontage& montage, FilterAttr low, FilterAttr high, FilterAttr notch) {
    const bool differs =
        !(low == montage.lowPass() && high == montage.highPass() && notch == montage.notch());
    montage.setLowPass(low);
    montage.setHighPass(high);
    montage.setNotch(notch);
    return differs;
}

// An event knows no width; without one the notch would filter nothing.
FilterAttr changedNotch(FilterAttr attr, const ClientEvent& event, IDataReader* reader) {
    attr = changed(attr, event);
    if (attr.use)
        attr.second = notchWidthFrequency(attr.cutoff, usualNotchHalfWidth,
                                          reader ? reader->samplingRate() : 0.0);
    return attr;
}

bool applyToMontage(SourceMontage& montage, const ClientEvent& event) {
    const FilterAttr low = montage.lowPass(), high = montage.highPass(), notch = montage.notch();
    switch (event.kind) {
    case sensitivity:
        return applyToRows(montage, [&](DataSource& row) {
            return change(row, withSensitivity(row.settings(), event));
        });
    case lowFilter:
        return setFilters(montage, low, changed(high, event), notch);
    case highFilter:
        return setFilters(montage, changed(low, event), high, notch);
    case notchFilter:
        return setFilters(montage, low, high, changedNotch(notch, event, montage.reader()));
    default: {
        const bool rows = applyToRows(montage, resetSource);
        return setFilters(montage, {}, {}, {}) || rows;
    }
    }
}

} // namespace

bool applyDisplayEvent(SourceMontage& montage, const ClientEvent& event) {
    if (event.kind < sensitivity || event.kind > reset)
        return false;
    const std::string label(fieldView(event.label));
    if (label.empty())
        return applyToMontage(montage, event);
    DataSource* row = montage.source(montage.indexOfFullName(label.c_str()));
    return row && !row->isGap() && applyToRow(montage, *row, event);
}

} // namespace kvsig
