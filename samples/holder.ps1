# Tells who holds documents of SharePoint libraries. Register velandoc.dll, then:
#   powershell -File holder.ps1 https://docs.example.com/sites/a/Shared%20Documents/b.xlsx
param([Parameter(Mandatory = $true, ValueFromRemainingArguments = $true)][string[]] $Url)

function Get-Holder([string] $url) {
    $document = New-Object -ComObject Velandoc.Client
    try {
        if (-not $document.InitFromURL($url)) { return 'the server does not know who you are' }
        # An open that found no document is a success without a document.
        if ($document.DocID -eq '') { return 'no such document' }
        if ($document.SharePointCheckoutUser -eq '') { return 'nobody' }
        return $document.SharePointCheckoutUser
    } finally {
        [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($document)
    }
}

foreach ($one in $Url) { "${one}: $(Get-Holder $one)" }
