Attribute VB_Name = "Holder"
' For Excel: tells who holds a document of a SharePoint library, for use in a cell:
'   =HolderOf("https://docs.example.com/sites/a/Shared%20Documents/b.xlsx")
' Register velandoc.dll for the 64-bit system. With a reference to "Velandoc 1.0 Type Library" the editor
' completes the members, and document can be declared As VelandocLib.Client.
Option Explicit

Public Function HolderOf(ByVal url As String) As String
    Dim document As Object
    Set document = CreateObject("Velandoc.Client")
    If Not document.InitFromURL(url) Then
        HolderOf = "the server does not know who you are"
    ElseIf document.DocID = "" Then
        ' An open that found no document is a success without a document.
        HolderOf = "no such document"
    ElseIf document.SharePointCheckoutUser = "" Then
        HolderOf = "nobody"
    Else
        HolderOf = document.SharePointCheckoutUser
    End If
End Function
