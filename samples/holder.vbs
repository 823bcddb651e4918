' Tells who holds documents of SharePoint libraries. Register velandoc.dll, then:
'   cscript //nologo holder.vbs https://docs.example.com/sites/a/Shared%20Documents/b.xlsx
Option Explicit

Function HolderOf(url)
  Dim document
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

Dim i
If WScript.Arguments.Count = 0 Then
  WScript.Echo "usage: cscript //nologo holder.vbs URL..."
  WScript.Quit 2
End If
For i = 0 To WScript.Arguments.Count - 1
  WScript.Echo WScript.Arguments(i) & ": " & HolderOf(WScript.Arguments(i))
Next
