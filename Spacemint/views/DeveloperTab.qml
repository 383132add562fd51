import QtQuick

Item {
    required property Ui ui
}
