// The modules that the views are made of.

#include <QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_UiKitPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ViewsPlugin)
