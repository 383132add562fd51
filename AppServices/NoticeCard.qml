import QtQuick

Item {
    property string title
    property string body
    property string primary
    property string secondary
    signal closed
    signal primaryChosen
    signal secondaryChosen
}
