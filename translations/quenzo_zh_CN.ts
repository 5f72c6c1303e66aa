<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>ApkCommands</name>
    <message>
        <source>checking</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the check gave no answer (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>archive    whole, %1 entries</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>alignment  good</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2 entries are not aligned: %3. &quot;quenzo pack&quot; aligns all it writes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>signature  unsigned</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>signature  there, but not verified</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>signature  verified, SHA-256 of the certificate %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: the signature does not hold: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>reading the manifest</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: aapt finds no package name; is it an APK?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>package    %1, version %2 (%3)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--pass-file FILE or --pass-env NAME</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>sign: missing: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--pass-file and --pass-env exclude each other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--pass-env: there is no environment variable &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was not signed: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>signed %1, SHA-256 of the certificate %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the APK file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>signs an APK in place through apksigner, and verifies it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The keystore with the key to sign with.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The keystore&apos;s password is the first line of this file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The keystore&apos;s password is in this environment variable.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The key&apos;s name, where the keystore holds several.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A password never stands on a command line. An APK that is not aligned is refused.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>checks an APK: archive, alignment, signature, package name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ends with 1 when the archive is damaged, an entry is not aligned, a signature does not hold or there is no package name. An unsigned APK is no failure.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ApkSigner</name>
    <message>
        <source>apksigner gave no reason</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the program apksigner is missing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>on Debian &quot;apt-get install apksigner&quot; brings it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the file is write-protected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>signing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>verifying the signature</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ArchiveCommands</name>
    <message>
        <source>The imported file is not this SDK</source>
        <translation>导入的文件不是此 SDK</translation>
    </message>
    <message>
        <source>Import file was damaged!</source>
        <translation>导入的文件已损坏！</translation>
    </message>
    <message>
        <source>Import file is wrong(config.xml was not found!)</source>
        <translation>导入的文件有误（找不到 config.xml！）</translation>
    </message>
    <message>
        <source>Import file is wrong(Failed to parse config.xml!)</source>
        <translation>导入的文件有误（无法解析 config.xml！）</translation>
    </message>
    <message>
        <source>Failed to unzip!</source>
        <translation>解压失败！</translation>
    </message>
    <message>
        <source>import failed with answer %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no further word</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>reading the package</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 -&gt; %2, which is replaced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 -&gt; %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>would import files: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--sdk-id takes a whole number that is not negative</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>importing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>imported %1 into %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>packing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--like and --onto exclude each other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>packing failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>packed %1 into %2, %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unpacking</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unpacking failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unpacked %1 into %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the archive file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>imports a channel SDK package</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the package file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder to fill</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Refuses a package of another SDK number.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tells file by file what would be done, and does nothing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>packs a folder into an archive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Adds this file beside the folder&apos;s contents.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keeps the order of this archive, and takes over as it was packed what is equal there.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Packs the folder over the entries of this archive.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>With --like or --onto what was stored in the base stays stored, and its signature is left out: sign the result.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unpacks an archive into a folder</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AssetCommands</name>
    <message>
        <source>--key takes the name of a file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--exclude takes a pattern of names</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>encrypting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>encrypted %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>encryption failed with answer %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>decrypting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>decrypted %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>decryption failed with answer %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>looking at the key</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the keys&apos; script gave no answer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>file         %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>fingerprint  %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>key          %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>made %1 with the fingerprint %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keep a copy: without it nothing can be decrypted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not encrypted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was encrypted with the key %2, which is %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 does not tell its key, as packages of earlier versions; only decrypting shows whether %2 is it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was encrypted with the key %2; %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was encrypted with the key %2, and %3 is the key %4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>key: &apos;%1&apos; is none of show, new and check</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>key check: missing: APK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>key %1: &apos;%2&apos; is one word too many</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The key&apos;s file, instead of QUENZO_KEY or your own.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the APK file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>encrypts the assets of an APK in place</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Leaves assets of such names as they are, like *.json or assets/web/*; may be repeated.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>gives the assets of an encrypted APK their bytes back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>shows or makes the key of encryption, or checks which one an APK needs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>show, new or check</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the APK to check</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows the key itself, too; whoever sees it can decrypt.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;show&quot; names the file and the fingerprint of the key in force, &quot;new&quot; makes one where there is none, &quot;check&quot; tells which key an APK was encrypted with, and ends with 1 when the present one is another.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Channels</name>
    <message>
        <source>channel %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>is not an object</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unknown key &quot;%1&quot;; the keys are %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is missing or empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is &quot;%2&quot;, which is no name of a folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; holds a slash, a backslash or a control character</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; holds half of a surrogate pair, which no file name can</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is longer than %2 bytes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a whole number of pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is none of %2, nor a number from 0 to 4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>line %1, column %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CHANNELS.json holds an array with an object a channel:
  &quot;folder&quot;  the channel&apos;s folder in the output folder (required)
  &quot;name&quot;    what the sheet shows (the folder&apos;s name)
  &quot;mark&quot;    the mark&apos;s folder in the marks&apos; folder (none)
  &quot;corner&quot;  left-top, left-bottom, right-top, right-bottom, default, or 0 to 4 (default)
  &quot;x&quot;       the mark&apos;s distance from the icon&apos;s left edge, in pixels
  &quot;y&quot;       its height over the icon&apos;s top edge: -20 is 20 pixels below it
Without &quot;x&quot; or &quot;y&quot; the mark lies flush in its corner. With the corner &quot;default&quot; it
goes where --default-corner, --default-x and --default-y put it, or flush into that
corner. A mark&apos;s pictures are MARK/icon/left-top.png and so on.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not a regular file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 cannot be read: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not JSON: %2 at %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 does not hold an array of channels</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Usage: quenzo COMMAND [options] [arguments]

Commands:
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>
quenzo help COMMAND tells more; quenzo version prints the version. Words behind -- are no options.

Exit codes:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1; did you mean &apos;%2&apos;?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: missing: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: &apos;%2&apos; is one word too many</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: unknown option &apos;%2&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Usage: quenzo %1 [options]</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>see quenzo %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--progress is terminal or json, not &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--quiet and --verbose exclude each other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no command given</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unknown command &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Console</name>
    <message>
        <source>y</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>yes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>called off; nothing was changed</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DBCommands</name>
    <message>
        <source>there is no database file &apos;%1&apos;; create --init makes one</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>there is no column &apos;%1&apos; to unscramble</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>rows: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>inserted into %1, rows: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>updated %1, statements: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>deleted from %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the table %1 cannot be made: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>made the table %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>db: &apos;%1&apos; is one word too many</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--init is for create</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--file names the database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the standard input is not UTF-8 text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a text of less than four bytes encodes to an empty one</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>writes, changes, removes and reads records of a database file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>insert writes rows; update writes new values into the rows that meet --where; delete removes and select reads the rows that meet every --where; tables and schema tell what there is; create makes a table</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the table&apos;s name, but for tables, and if one is meant for schema</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>values to insert or update, as text; without any, or with -, each line of the standard input is a row, a JSON object of names to values; for create COLUMN:TYPE, with the types text, integer, real, numeric and blob</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The database file, which exists.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A condition, compared as text; may be repeated for select and delete, and is given once for update.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Empties the table: for delete without a condition.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Writes values scrambled, of this column, or of all if none is named; may be repeated. Give it behind the table, or as --encode=COLUMN. With columns, conditions on them are compared scrambled. Without, delete compares with scrambled values; update leaves its condition plain; select unscrambles its conditions.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Writes scrambled what cannot be brought back: null, less than four bytes, a zero byte.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Makes the file with its first table: for create.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unscrambles this column of what select has read; may be repeated.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Goes without the queue: each row is committed by itself, and those before a failed one stay. The queue writes all rows of an insert or none; of an update, what the rows before a failed one changed stays, too, unless the table says ON CONFLICT ROLLBACK or the disk is full.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Prints rows as CSV; otherwise as a table on a terminal, elsewhere as JSON lines.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A row of the input whose values would not be kept as they are is refused, and nothing is written:
one with a column given twice, an integer beyond 64 bits, or half a surrogate pair.
JSON shows reals without a fraction as whole numbers, bytes as Base64, and integers beyond 2^53
and infinite numbers (9e999) as text. Inserted again, the latter are numbers in columns of a
numeric type, and text in others.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the text; - is the standard input, without its last line break</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>scrambles a text as db --encode does</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unscrambles such a text</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DBRequestTexts</name>
    <message>
        <source>&apos;%1&apos; is not of the form COLUMN=VALUE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the column &apos;%1&apos; is given twice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>an insert takes no --where</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>an update takes exactly one --where COLUMN=VALUE, and no empty value</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a delete takes either --where COLUMN=VALUE or --all</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--all is for a delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the condition&apos;s column &apos;%1&apos; cannot be written under the same name; &apos;%2&apos; would do</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a row needs a column</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a row has more columns, %1, than any table</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no name: letters, digits and underscores of ASCII make one</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is none of insert, update, delete, select, tables, schema and create</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--file names the database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>db: missing: TABLE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>conditions are given as --where COLUMN=VALUE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--encode is for all columns or for those that are named, not for both</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>line %1 of the input: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DBSession</name>
    <message>
        <source>waiting for the database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is row %1 of %2; those before it stay written.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No row is written.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What the rows before this one changed stays written.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What the rows before this one changed is undone, too.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the transaction on %1 cannot be committed: %2. Nothing is written.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no thread could be started for the work; nothing was done</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DBStructure</name>
    <message>
        <source>no such table: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not of the form COLUMN:TYPE with one of the types text, integer, real, numeric and blob</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a table needs a column: COLUMN:TYPE</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DeviceCommands</name>
    <message>
        <source>asking for devices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not usable: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the devices cannot be listed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: no such file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: a path with a quotation mark cannot be used; rename it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>reading the package name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: aapt finds no package name; is it an APK?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: &quot;%2&quot; cannot be the name of a package</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no device is ready</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connect one, unlock it and allow debugging</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the device %1 is not ready. Ready:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>several devices are ready</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>choose one by -s SERIAL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>several devices are ready:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Number of the device:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is none of the numbers 1 to %2. Number of the device:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no device was chosen</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 and its data are removed from %2 before the install. Go on? [y/N]</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 and its data are removed from %2. Go on? [y/N]</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no outcome was reported within %1 s. adb failed without a code, could not be started, or is still at work.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>adb crashed without a word</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--timeout takes a duration such as 90s or 2m, at most 24h</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>this removes a package and its data: --yes is needed where nobody can be asked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: a serial with a quotation mark cannot be used</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the APK file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device, by its serial as &quot;quenzo devices&quot; prints it. Default: ANDROID_SERIAL, or else the only one.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gives up after this time, such as 90s or 2m. Default: 10m.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Does not ask before it removes the installed package. Needed where no terminal is.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>lists the attached Android devices that are ready</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>prints the package name of an APK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>installs an APK on a device, in the place of its package</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The installed package is always removed first, with all its data. There is no way back: it is gone even if the device then refuses the APK. On a terminal you are asked first.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>removes an APK&apos;s package from a device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All data of the package goes with it. On a terminal you are asked first.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DeviceTask</name>
    <message>
        <source>interrupted; nothing was changed on %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>interrupted on %1. The last of these may be done or not:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>installing on %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>uninstalling from %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DryRun</name>
    <message>
        <source>delete %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>replace %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>write %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>files to write: %1, to delete: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Figures</name>
    <message>
        <source>%1 bytes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>kB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>TB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>IconCommands</name>
    <message>
        <source>icons: missing: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--layout is one of %1, not &apos;%2&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--platform is android or ios, not &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--layout %1 is for the platform %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--name belongs to the other layouts than plain</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no icon of a package can be named &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--background belongs to the layout android-adaptive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--onto belongs to the layout android-res, and takes the names from the package</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--clear belongs to the layout plain; the others delete nothing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the standard output is either for --json or for the sheet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--keep and --clear exclude each other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--default-corner is left-top, left-bottom, right-top or right-bottom, or 0 to 3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--default-x and --default-y take whole numbers of pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it is not a regular file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the icon &apos;%1&apos; cannot be read: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the background &apos;%1&apos; cannot be read: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the marks&apos; folder &apos;%1&apos; does not exist</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be found: the current folder is gone; give a whole path</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>and %1 more like these</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not written in %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not written: %1 of %2 files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, channels: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the sheet &apos;%1&apos; cannot be written: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no font was found; the sheet has neither a title nor names</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>channel &apos;%1&apos;: no installed font has %2; the sheet shows boxes there</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the next run into %1 will need --clear</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not deleted: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2 files in %3 s, channels: %4, folder: %5</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>makes every channel&apos;s launcher icons</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the list of channels, see below; - reads it from the standard input</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The game&apos;s icon, in any usual format.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder that holds a folder a mark.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The output folder. With the layout plain it is deleted first, and must be empty or of an earlier run; the others only add to it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The set of sizes: android or ios. Other layouts than plain name it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>How they are arranged: %1 (plain).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The icon&apos;s name in the package (ic_launcher, AppIcon).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The built package whose icons these replace, for android-res.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The picture behind the icon, for android-adaptive.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The corner of channels with the corner &quot;default&quot; (right-bottom).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Where these channels&apos; marks go, as &quot;x&quot; (flush in the corner).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Where these channels&apos; marks go, as &quot;y&quot; (flush in the corner).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deletes nothing: files of the same names are overwritten.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deletes an output folder that no earlier run has made, too.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Leaves icons unmarked whose marks are missing or cannot be read.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tells file by file what would be written and deleted, and does nothing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Draws all channels&apos; icons with their names into one picture; - is the standard output.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>IconProduction</name>
    <message>
        <source>drawing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no icon is made: the system gives no threads for it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no folder for files on the way can be made: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>arranging</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>InstallErrors</name>
    <message>
        <source>adb could not do its work.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The program adb is not installed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>It took too long: is the device connected and unlocked, and does it allow debugging by this computer?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The installation was called off, on the device as a rule.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The package is installed already.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Another app on the device has a content provider of the same name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device could not prepare the app&apos;s code: often it lacks room.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Another app on the device declares a permission of the same name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device does not have enough room.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device failed for a reason of its own: often a restart of it helps.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The APK is damaged, or the device cannot use what is in it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device lacks a feature that the APK demands.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device lacks a library that the APK demands.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The APK&apos;s native code is for other processors than the device&apos;s.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device&apos;s Android is older than the APK demands.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The APK is marked for tests only: build it for release.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The package is still on the device, signed by another key: for another user of it, or as part of the system.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device does not allow installing over USB: see its developer options.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device&apos;s app verification refused the APK.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A newer version of the package is still on the device.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The APK&apos;s parts are signed by different keys.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The APK&apos;s manifest has an error.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The APK is not signed, or not in a way that the device understands.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is no APK.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device refused the APK.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Job</name>
    <message>
        <source>the icon &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the package &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the background &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the channel list &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the mark picture &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the mark picture &apos;%1&apos; is not a regular file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is one of the files to be written</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the sheet would replace %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the sheet would replace &apos;%1&apos;, one of the files to be written</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the whole file system</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>your home folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the current folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>this program</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the icon</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the marks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the channel list</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the output folder &apos;%1&apos; is deleted first, and it holds %2 (--keep deletes nothing)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the output folder &apos;%1&apos; is not empty, and no earlier run has made it: --clear deletes what is in it, --keep leaves it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the mark picture %1 is missing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the mark picture %1 cannot be read (%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the icon has %1 pixels, and an app icon set takes a square one</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the icon has %1 pixels, and is enlarged for the store&apos;s picture of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the icon has transparent parts, which become white in the store&apos;s picture</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the mark lies outside the icon: its top left corner is at (%1, %2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the mark is cut off: it has %1 pixels at (%2, %3), and the icon has %4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the output folder &apos;%1&apos; is not a folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>channel &apos;%1&apos;: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 also shows %2 as its icon, which stays</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; is given twice; the later channel&apos;s icons stay</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>JsonRowTexts</name>
    <message>
        <source>&apos;%1&apos; holds neither text, number, true, false nor null</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; holds half a surrogate pair, which is no character</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a row is one JSON object</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the column &apos;%1&apos; is given twice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the integer of &apos;%1&apos; is beyond 64 bits; in quotation marks it is kept as text</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LayoutProduction</name>
    <message>
        <source>its picture could not be made</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder could not be made: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>what is there is no regular file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was not written: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PackageIcons</name>
    <message>
        <source>the package &apos;%1&apos; is no file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>aapt cannot read the package &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the package &apos;%1&apos; has no icon that is a PNG file</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Program</name>
    <message>
        <source>quenzo: the standard output cannot be written: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>word %1, &apos;%2&apos;, is not UTF-8 text</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Progress</name>
    <message>
        <source>%1 files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 rows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1/s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 left</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Scrambling</name>
    <message>
        <source>%1, column &apos;%2&apos;: &apos;%3&apos; could not be brought back once it is scrambled (null, less than four bytes, or a zero byte); --lossy writes it all the same</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>row %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the condition</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ScriptCommands</name>
    <message>
        <source>running</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 gave no answer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 did not answer &quot;param&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 succeeded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CHANNEL-ID is a whole number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>exporting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>export failed with answer %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>exported channel %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>calls a function of a script, which answers &quot;param&quot; when all went well</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the script file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the function&apos;s name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>its arguments; whole numbers go as int; negative ones behind a --</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Passes whole numbers as text, too.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Prints what the function returns, a text as it is and numbers, lists and maps as JSON.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>exports a channel&apos;s developer information</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the channel&apos;s number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder to fill</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ScriptTask</name>
    <message>
        <source>&apos;%1&apos; does not exist</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>StandardStreams</name>
    <message>
        <source>the standard input cannot be read</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Table</name>
    <message>
        <source>Shows this help.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Prints one JSON object as the result.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>How the state of work is shown: terminal (a line, where there is one) or json (objects, line by line on the standard error).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows no progress, no warnings and no word of success.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tells the steps, and all of the causes.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>done</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the operation failed, or not all of it could be done</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the words were wrong; nothing was done</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl-C ended the program, as a shell tells it: 128 and the signal&apos;s number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file of the key that encrypt and decrypt take, where --key names none.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder that holds the person&apos;s own key, instead of ~/.local/share.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder that holds the log of a program that the system&apos;s packages have installed, instead of ~/.local/state.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file of the channels&apos; developer records that export reads.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device of install and uninstall, where --device names none.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>How many seconds one command of adb may take: 600.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>How many seconds of these it may wait for a device that is away: 20.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A terminal that is &quot;dumb&quot; gets no state of work at hand, and no colour.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Any value switches colour off.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The program; everything else is found from its folder, links resolved.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The scripts behind import, encrypt, decrypt, pack, unpack and export, and the developer records.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>adb and aapt, and what the interpreter imports first.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The log.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The log of a program that the system&apos;s packages have installed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The person&apos;s own key, made when it is first needed.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ToolCheck</name>
    <message>
        <source>the program %1 is missing: there is no %2 that can be run</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the program %1 does not work: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TreeCommands</name>
    <message>
        <source>files: %1, size: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing was touched: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>everything was copied to &apos;%1&apos;, but files are still in &apos;%2&apos;: %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copied to %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Moved to %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>removing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Removed %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>this removes &apos;%1&apos; with all in it: --yes is needed where nobody can be asked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>counting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is removed with all in it, %2. Go on? [y/N]</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tells file by file what would be done, and does nothing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder whose content is meant.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder for it; existing files are replaced.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>moves a folder&apos;s content into an output folder, which may lie inside</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Names directly in SRC that stay, in any case: Log,build</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>copies a folder&apos;s content into another folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>moves a folder&apos;s content into another folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>removes a folder with everything in it, read-only files too</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Does not ask; needed where there is no terminal.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TreeOperation</name>
    <message>
        <source>copying</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>moving</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2 files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>and %1 more like these</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>from &apos;%1&apos; to &apos;%2&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>counting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a link to the target, or to a folder that holds it; nothing was touched</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; could not be made</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not everything has come to &apos;%1&apos;; the rest is in &apos;%2&apos;</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TreePaths</name>
    <message>
        <source>the name of a folder is longer than %1 bytes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the name of a folder is empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be found: the current folder is gone; give a whole path</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; and &apos;%2&apos; are the same folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is inside &apos;%2&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>there is no folder &apos;%1&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; cannot be read</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a link that leads nowhere</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos;, in which &apos;%2&apos; is to be made, does not exist</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; cannot be written to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a link; name the folder that it leads to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;%1&apos; holds the current folder and is not removed</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TreePlan</name>
    <message>
        <source>%1 -&gt; %2, which is replaced</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 -&gt; %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TreeRemoval</name>
    <message>
        <source>&apos;%1&apos; could not be removed: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Worker</name>
    <message>
        <source>no thread could be started for the work; nothing was done</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
