#pragma once

#include <spa/param/format.h>
#include <spa/pod/builder.h>

namespace zento {

/// Offers the `format` of each form to a stream of pictures, the first one before all others.
template <typename Forms>
void addFormatChoice(spa_pod_builder& builder, const Forms& forms)
{
    spa_pod_frame choice{};
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Enum, 0);
    spa_pod_builder_id(&builder, forms.front().format); // the default stands in front
    for (const auto& form : forms) {
        spa_pod_builder_id(&builder, form.format);
    }
    spa_pod_builder_pop(&builder, &choice);
}

} // namespace zento
