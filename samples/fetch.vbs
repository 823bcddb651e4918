' Brings a file from HDFS, or tells in the server's words why not. Register velandoc.dll, then:
'   cscript //nologo fetch.vbs http://namenode.example.com:9870 bob /user/bob/report.csv C:\Data\report.csv
Option Explicit

Function HttpCode(client)
  ' There is no such object before the first request.
  HttpCode = 0
  If Not client.ConnectionError Is Nothing Then HttpCode = client.ConnectionError.HttpCode
End Function

Dim client, saved
If WScript.Arguments.Count <> 4 Then
  WScript.Echo "usage: cscript //nologo fetch.vbs SERVER USER FILE LOCAL-FILE"
  WScript.Quit 2
End If
On Error Resume Next
Set client = CreateObject("Velantrica.HdfsClient")
If Err.Number <> 0 Then
  WScript.Echo "velandoc.dll is not registered: " & Err.Description
  WScript.Quit 3
End If
client.BaseUrl = WScript.Arguments(0)
If Err.Number <> 0 Then
  WScript.Echo "not a server's URL: " & WScript.Arguments(0)
  WScript.Quit 2
End If
client.UserName = WScript.Arguments(1)
client.HdfsPath = WScript.Arguments(2)
saved = client.Download(False, WScript.Arguments(3))
If Err.Number = 0 Then
  WScript.Echo "saved " & saved
  WScript.Quit 0
End If
If Err.Number = 70 Then
  ' VBScript's number for E_ACCESSDENIED.
  WScript.Echo "the local file cannot be written: " & WScript.Arguments(3)
Else
  WScript.Echo "status " & HttpCode(client) & ": " & Err.Description
End If
WScript.Quit 1
