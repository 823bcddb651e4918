' What VBScript makes of the component's failures: docs/errors.md tells the same. Its argument is an HDFS server's URL.
Option Explicit
On Error Resume Next
Dim client, document, value

Sub Tell(what)
  WScript.Echo what & ": " & Err.Number & " [" & Err.Description & "] [" & Err.Source & "]"
  Err.Clear
End Sub

Set document = CreateObject("Velandoc.Client")
value = document.HasFields()
Tell "no error object, E_FAIL"
Set client = CreateObject("Velantrica.HdfsClient")
client.BaseUrl = "ftp://namenode"
Tell "no error object, E_INVALIDARG"
client.BaseUrl = WScript.Arguments(0)
value = client.VerifyServer(WScript.Arguments(0))
Tell "an argument left out that must not be"
value = client.VerifyServer(WScript.Arguments(0), Empty)
Tell "the same empty, " & value
client.HdfsPath = "/folder/"
client.Op = "OPEN"
value = client.Download()
Tell "no error object, E_ACCESSDENIED"
client.HdfsPath = "/none.csv"
value = client.Download()
Tell "the server's words"
client.Upload 5
Tell "an error object, E_NOINTERFACE"
client.Upload "none.csv", True, "999"
Tell "an error object, E_INVALIDARG"
value = client.CreateFolder("999")
Tell "another source"
WScript.Echo "end of the script"
