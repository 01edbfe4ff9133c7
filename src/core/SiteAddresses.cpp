#include "core/SiteAddresses.h"

#include "core/SettingsStore.h"

namespace {

QString Stored(const SettingsStore& store, const char* key, const char* fallback)
{
    const QString stored = store.RegReadString(QLatin1String(key));
    return stored.isEmpty() ? QLatin1String(fallback) : stored;
}

} // namespace

QString TutorialAddress(const SettingsStore& store, bool polish)
{
    if (polish)
        return Stored(store, "tutorial address pl", "https://www.songweaver.pl/tutorial.php");
    return Stored(store, "tutorial address", "https://www.tonehaven.org/songweaver/tutorial.php");
}

QString VersionAddress(const SettingsStore& store)
{
    return Stored(store, "version address", "https://www.tonehaven.org/songweaver/version.php");
}

QString HomepageAddress(const SettingsStore& store)
{
    return Stored(store, "homepage address", "https://www.tonehaven.org/songweaver/");
}

QString FeedbackAddress(const SettingsStore& store)
{
    return Stored(store, "feedback address", "mailto:songweaver@tonehaven.org?subject=Songweaver");
}
