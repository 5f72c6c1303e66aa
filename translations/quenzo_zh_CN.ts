<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>ApkCommands</name>
    <message>
        <source>checking</source>
        <translation>正在检查</translation>
    </message>
    <message>
        <source>the check gave no answer (%1)</source>
        <translation>检查没有给出应答（%1）</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>archive    whole, %1 entries</source>
        <translation>压缩包     完整，共 %1 个条目</translation>
    </message>
    <message>
        <source>alignment  good</source>
        <translation>对齐       正常</translation>
    </message>
    <message>
        <source>%1: %2 entries are not aligned: %3. &quot;quenzo pack&quot; aligns all it writes</source>
        <translation>%1: 有 %2 个条目未对齐：%3。&quot;quenzo pack&quot; 会对齐它写入的所有条目</translation>
    </message>
    <message>
        <source>signature  unsigned</source>
        <translation>签名       未签名</translation>
    </message>
    <message>
        <source>signature  there, but not verified</source>
        <translation>签名       有，但未验证</translation>
    </message>
    <message>
        <source>signature  verified, SHA-256 of the certificate %1</source>
        <translation>签名       已验证，证书的 SHA-256 为 %1</translation>
    </message>
    <message>
        <source>%1: the signature does not hold: %2</source>
        <translation>%1: 签名无效：%2</translation>
    </message>
    <message>
        <source>reading the manifest</source>
        <translation>正在读取清单文件</translation>
    </message>
    <message>
        <source>%1: aapt finds no package name; is it an APK?</source>
        <translation>%1: aapt 找不到包名；它是 APK 吗？</translation>
    </message>
    <message>
        <source>package    %1, version %2 (%3)</source>
        <translation>包         %1，版本 %2（%3）</translation>
    </message>
    <message>
        <source>--pass-file FILE or --pass-env NAME</source>
        <translation>--pass-file FILE 或 --pass-env NAME</translation>
    </message>
    <message>
        <source>--pass-file and --pass-env exclude each other</source>
        <translation>--pass-file 与 --pass-env 不能同时使用</translation>
    </message>
    <message>
        <source>--pass-env: there is no environment variable &apos;%1&apos;</source>
        <translation>--pass-env: 没有环境变量 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>%1 was not signed: %2</source>
        <translation>%1 未能签名：%2</translation>
    </message>
    <message>
        <source>signed %1, SHA-256 of the certificate %2</source>
        <translation>已为 %1 签名，证书的 SHA-256 为 %2</translation>
    </message>
    <message>
        <source>the APK file</source>
        <translation>APK 文件</translation>
    </message>
    <message>
        <source>signs an APK in place through apksigner, and verifies it</source>
        <translation>用 apksigner 就地为 APK 签名并验证</translation>
    </message>
    <message>
        <source>The keystore with the key to sign with.</source>
        <translation>含有签名密钥的密钥库。</translation>
    </message>
    <message>
        <source>The keystore&apos;s password is the first line of this file.</source>
        <translation>密钥库的密码是此文件的第一行。</translation>
    </message>
    <message>
        <source>The keystore&apos;s password is in this environment variable.</source>
        <translation>密钥库的密码在此环境变量中。</translation>
    </message>
    <message>
        <source>The key&apos;s name, where the keystore holds several.</source>
        <translation>密钥的名称，用于密钥库中有多个密钥时。</translation>
    </message>
    <message>
        <source>A password never stands on a command line. An APK that is not aligned is refused.</source>
        <translation>密码绝不写在命令行上。未对齐的 APK 会被拒绝。</translation>
    </message>
    <message>
        <source>checks an APK: archive, alignment, signature, package name</source>
        <translation>检查 APK：压缩包、对齐、签名、包名</translation>
    </message>
    <message>
        <source>Ends with 1 when the archive is damaged, an entry is not aligned, a signature does not hold or there is no package name. An unsigned APK is no failure.</source>
        <translation>压缩包损坏、有条目未对齐、签名无效或没有包名时，以 1 退出。未签名的 APK 不算失败。</translation>
    </message>
    <message>
        <source>%1: aapt cannot read it</source>
        <translation>%1：aapt 无法读取它</translation>
    </message>
    <message>
        <source>the program aapt is missing: there is no %1 that can be run</source>
        <translation>缺少程序 aapt：没有可运行的 %1</translation>
    </message>
</context>
<context>
    <name>ApkEditorTexts</name>
    <message>
        <source>cannot read %1 for &apos;%2&apos;: %3</source>
        <translation>无法读取 %1（用于 &apos;%2&apos;）：%3</translation>
    </message>
    <message>
        <source>this is not a regular file</source>
        <translation>这不是普通文件</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; has content</source>
        <translation>文件夹 &apos;%1&apos; 带有内容</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>the entry &apos;%1&apos; is wanted twice</source>
        <translation>条目 &apos;%1&apos; 被指定了两次</translation>
    </message>
    <message>
        <source>%1: no base is open</source>
        <translation>%1: 没有打开基准包</translation>
    </message>
    <message>
        <source>%1 changed while packages were made of it</source>
        <translation>%1 在用来制作安装包期间发生了变化</translation>
    </message>
    <message>
        <source>%1: &apos;%2&apos; is not aligned</source>
        <translation>%1: &apos;%2&apos; 未对齐</translation>
    </message>
    <message>
        <source>%1: there is no &apos;%2&apos;</source>
        <translation>%1: 没有 &apos;%2&apos;</translation>
    </message>
</context>
<context>
    <name>ApkSigner</name>
    <message>
        <source>apksigner gave no reason</source>
        <translation>apksigner 没有给出原因</translation>
    </message>
    <message>
        <source>the program apksigner is missing</source>
        <translation>缺少程序 apksigner</translation>
    </message>
    <message>
        <source>on Debian &quot;apt-get install apksigner&quot; brings it</source>
        <translation>在 Debian 上可用 &quot;apt-get install apksigner&quot; 安装</translation>
    </message>
    <message>
        <source>the file is write-protected</source>
        <translation>文件是只读的</translation>
    </message>
    <message>
        <source>signing</source>
        <translation>正在签名</translation>
    </message>
    <message>
        <source>verifying the signature</source>
        <translation>正在验证签名</translation>
    </message>
</context>
<context>
    <name>ApkTool</name>
    <message>
        <source>the program apktool is missing, and the job changes manifests</source>
        <translation>缺少程序 apktool，而该任务要修改清单</translation>
    </message>
    <message>
        <source>on Debian &quot;apt-get install apktool&quot; brings it</source>
        <translation>在 Debian 上用 &quot;apt-get install apktool&quot; 安装</translation>
    </message>
    <message>
        <source>%1 failed: %2</source>
        <translation>%1失败：%2</translation>
    </message>
    <message>
        <source>%1 failed</source>
        <translation>%1失败</translation>
    </message>
    <message>
        <source>decoding the base</source>
        <translation>解码基础包</translation>
    </message>
    <message>
        <source>apktool gave no manifest</source>
        <translation>apktool 没有给出清单</translation>
    </message>
    <message>
        <source>building the manifest</source>
        <translation>构建清单</translation>
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
        <translation>导入失败，应答为 %1：%2</translation>
    </message>
    <message>
        <source>no further word</source>
        <translation>没有更多说明</translation>
    </message>
    <message>
        <source>reading the package</source>
        <translation>正在读取 SDK 包</translation>
    </message>
    <message>
        <source>would import files: %1</source>
        <translation>将导入的文件数：%1</translation>
    </message>
    <message>
        <source>--sdk-id takes a whole number that is not negative</source>
        <translation>--sdk-id 需要一个非负整数</translation>
    </message>
    <message>
        <source>importing</source>
        <translation>正在导入</translation>
    </message>
    <message>
        <source>imported %1 into %2</source>
        <translation>已将 %1 导入到 %2</translation>
    </message>
    <message>
        <source>packing</source>
        <translation>正在打包</translation>
    </message>
    <message>
        <source>--like and --onto exclude each other</source>
        <translation>--like 与 --onto 不能同时使用</translation>
    </message>
    <message>
        <source>packing failed</source>
        <translation>打包失败</translation>
    </message>
    <message>
        <source>packed %1 into %2, %3</source>
        <translation>已将 %1 打包到 %2，%3</translation>
    </message>
    <message>
        <source>unpacking</source>
        <translation>正在解压</translation>
    </message>
    <message>
        <source>unpacking failed</source>
        <translation>解压失败</translation>
    </message>
    <message>
        <source>unpacked %1 into %2</source>
        <translation>已将 %1 解压到 %2</translation>
    </message>
    <message>
        <source>the folder</source>
        <translation>文件夹</translation>
    </message>
    <message>
        <source>the archive file</source>
        <translation>压缩包文件</translation>
    </message>
    <message>
        <source>imports a channel SDK package</source>
        <translation>导入渠道 SDK 包</translation>
    </message>
    <message>
        <source>the folder to fill</source>
        <translation>要写入的文件夹</translation>
    </message>
    <message>
        <source>Refuses a package of another SDK number.</source>
        <translation>拒绝 SDK 编号不同的包。</translation>
    </message>
    <message>
        <source>Tells file by file what would be done, and does nothing.</source>
        <translation>逐个文件列出将要做的事，不做任何改动。</translation>
    </message>
    <message>
        <source>packs a folder into an archive</source>
        <translation>把文件夹打包成压缩包</translation>
    </message>
    <message>
        <source>Adds this file beside the folder&apos;s contents.</source>
        <translation>在文件夹的内容之外，再加入此文件。</translation>
    </message>
    <message>
        <source>Keeps the order of this archive, and takes over as it was packed what is equal there.</source>
        <translation>保持此压缩包的条目顺序，内容相同的条目原样沿用其压缩数据。</translation>
    </message>
    <message>
        <source>Packs the folder over the entries of this archive.</source>
        <translation>把文件夹打包覆盖到此压缩包的条目之上。</translation>
    </message>
    <message>
        <source>unpacks an archive into a folder</source>
        <translation>把压缩包解压到文件夹</translation>
    </message>
    <message>
        <source>the standard output is either for --json or for the archive</source>
        <translation>标准输出只能用于 --json 或压缩包之一</translation>
    </message>
    <message>
        <source>an archive is nothing for a terminal: lead the standard output elsewhere</source>
        <translation>压缩包不能输出到终端：请把标准输出重定向到别处</translation>
    </message>
    <message>
        <source>the standard output</source>
        <translation>标准输出</translation>
    </message>
    <message>
        <source>no archive can be typed: lead one to the standard input</source>
        <translation>压缩包无法手工输入：请把压缩包重定向到标准输入</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>标准输入</translation>
    </message>
    <message>
        <source>With --like or --onto what was stored in the base stays stored, and its signature is left out: sign the result. As ARCHIVE - is the standard output; a file of this name is ./-.</source>
        <translation>使用 --like 或 --onto 时，基准包中未压缩存储的条目保持不压缩，其签名不带入：请为结果重新签名。ARCHIVE 为 - 时表示标准输出；名为 - 的文件请写成 ./-。</translation>
    </message>
    <message>
        <source>As ARCHIVE - is the standard input; a file of this name is ./-.</source>
        <translation>ARCHIVE 为 - 时表示标准输入；名为 - 的文件请写成 ./-。</translation>
    </message>
    <message>
        <source>would import &apos;%1&apos; to &apos;%2&apos;, which is replaced</source>
        <translation>将把 &apos;%1&apos; 导入到 &apos;%2&apos;，后者将被替换</translation>
    </message>
    <message>
        <source>would import &apos;%1&apos; to &apos;%2&apos;</source>
        <translation>将把 &apos;%1&apos; 导入到 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>the package file; - is the standard input</source>
        <translation>包文件；- 表示标准输入</translation>
    </message>
</context>
<context>
    <name>ArchiveFileTexts</name>
    <message>
        <source>this is not a regular file</source>
        <translation>这不是普通文件</translation>
    </message>
</context>
<context>
    <name>ArchiveStream</name>
    <message>
        <source>no folder for a file on the way can be made</source>
        <translation>无法为中间文件创建文件夹</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be written</source>
        <translation>无法写入 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>reading</source>
        <translation>正在读取</translation>
    </message>
    <message>
        <source>the archive cannot be read</source>
        <translation>无法读取压缩包</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read</source>
        <translation>无法读取 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>writing</source>
        <translation>正在写入</translation>
    </message>
</context>
<context>
    <name>AssetCommands</name>
    <message>
        <source>--key takes the name of a file</source>
        <translation>--key 需要一个文件名</translation>
    </message>
    <message>
        <source>--exclude takes a pattern of names</source>
        <translation>--exclude 需要一个名称模式</translation>
    </message>
    <message>
        <source>encrypted %1</source>
        <translation>已加密 %1</translation>
    </message>
    <message>
        <source>encryption failed with answer %1</source>
        <translation>加密失败，应答为 %1</translation>
    </message>
    <message>
        <source>decrypting</source>
        <translation>正在解密</translation>
    </message>
    <message>
        <source>decrypted %1</source>
        <translation>已解密 %1</translation>
    </message>
    <message>
        <source>decryption failed with answer %1</source>
        <translation>解密失败，应答为 %1</translation>
    </message>
    <message>
        <source>looking at the key</source>
        <translation>正在查看密钥</translation>
    </message>
    <message>
        <source>the keys&apos; script gave no answer</source>
        <translation>密钥脚本没有给出应答</translation>
    </message>
    <message>
        <source>file         %1</source>
        <translation>文件         %1</translation>
    </message>
    <message>
        <source>fingerprint  %1</source>
        <translation>指纹         %1</translation>
    </message>
    <message>
        <source>key          %1</source>
        <translation>密钥         %1</translation>
    </message>
    <message>
        <source>made %1 with the fingerprint %2</source>
        <translation>已生成 %1，指纹为 %2</translation>
    </message>
    <message>
        <source>Keep a copy: without it nothing can be decrypted.</source>
        <translation>请保留一份副本：没有它就什么都无法解密。</translation>
    </message>
    <message>
        <source>%1 is not encrypted</source>
        <translation>%1 没有加密</translation>
    </message>
    <message>
        <source>%1 was encrypted with the key %2, which is %3</source>
        <translation>%1 是用密钥 %2 加密的，即 %3</translation>
    </message>
    <message>
        <source>%1 does not tell its key, as packages of earlier versions; only decrypting shows whether %2 is it</source>
        <translation>%1 没有注明密钥，早期版本的包都是如此；只有解密才能知道是不是 %2</translation>
    </message>
    <message>
        <source>%1 was encrypted with the key %2; %3</source>
        <translation>%1 是用密钥 %2 加密的；%3</translation>
    </message>
    <message>
        <source>%1 was encrypted with the key %2, and %3 is the key %4</source>
        <translation>%1 是用密钥 %2 加密的，而 %3 是密钥 %4</translation>
    </message>
    <message>
        <source>key %1: &apos;%2&apos; is one word too many</source>
        <translation>key %1: &apos;%2&apos; 是多余的</translation>
    </message>
    <message>
        <source>The key&apos;s file, instead of QUENZO_KEY or your own.</source>
        <translation>密钥文件，代替 QUENZO_KEY 或您自己的密钥。</translation>
    </message>
    <message>
        <source>the APK file</source>
        <translation>APK 文件</translation>
    </message>
    <message>
        <source>encrypts the assets of an APK in place</source>
        <translation>就地加密 APK 的资源文件</translation>
    </message>
    <message>
        <source>Leaves assets of such names as they are, like *.json or assets/web/*; may be repeated.</source>
        <translation>名称匹配的资源文件保持原样，例如 *.json 或 assets/web/*；可重复。</translation>
    </message>
    <message>
        <source>gives the assets of an encrypted APK their bytes back</source>
        <translation>把已加密 APK 的资源文件恢复为原来的字节</translation>
    </message>
    <message>
        <source>shows or makes the key of encryption, or checks which one an APK needs</source>
        <translation>显示或生成加密密钥，或检查 APK 需要哪个密钥</translation>
    </message>
    <message>
        <source>show, new or check</source>
        <translation>show、new 或 check</translation>
    </message>
    <message>
        <source>the APK to check</source>
        <translation>要检查的 APK</translation>
    </message>
    <message>
        <source>Shows the key itself, too; whoever sees it can decrypt.</source>
        <translation>同时显示密钥本身；看到它的人就能解密。</translation>
    </message>
    <message>
        <source>&quot;show&quot; names the file and the fingerprint of the key in force, &quot;new&quot; makes one where there is none, &quot;check&quot; tells which key an APK was encrypted with, and ends with 1 when the present one is another.</source>
        <translation>&quot;show&quot; 显示当前生效密钥的文件和指纹，&quot;new&quot; 在没有密钥时生成一个，&quot;check&quot; 说明 APK 是用哪个密钥加密的，若当前密钥不是它则以 1 退出。</translation>
    </message>
</context>
<context>
    <name>AssetEncryption</name>
    <message>
        <source>encrypting</source>
        <translation>正在加密</translation>
    </message>
</context>
<context>
    <name>BuildCommands</name>
    <message>
        <source>--install removes a package and its data: --yes is needed where nobody can be asked</source>
        <translation>--install 会移除应用包及其数据：无人可问时需要 --yes</translation>
    </message>
    <message>
        <source>--install: there is no channel &apos;%1&apos; to be built</source>
        <translation>--install：没有要构建的渠道 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>--jobs takes a number from 1 to %1</source>
        <translation>--jobs 需要 1 到 %1 的数字</translation>
    </message>
    <message>
        <source>--share takes words like 1/4</source>
        <translation>--share 需要形如 1/4 的词</translation>
    </message>
    <message>
        <source>makes every channel&apos;s package of a job</source>
        <translation>为任务的每个渠道制作安装包</translation>
    </message>
    <message>
        <source>The job&apos;s file, JSON.</source>
        <translation>任务文件，JSON 格式。</translation>
    </message>
    <message>
        <source>Reads and checks the job, prints what would be done, and does nothing.</source>
        <translation>读取并检查任务，列出将要做的事，不做任何改动。</translation>
    </message>
    <message>
        <source>Builds the channels whose inputs have not changed, too.</source>
        <translation>输入没有变化的渠道也重新构建。</translation>
    </message>
    <message>
        <source>How many processes build channels at once.</source>
        <translation>同时构建渠道的进程数。</translation>
    </message>
    <message>
        <source>Builds one of N parts of the channels, the first of which is 1.</source>
        <translation>构建渠道的 N 个部分之一，第一个是 1。</translation>
    </message>
    <message>
        <source>How many parts there are, where the environment tells which one.</source>
        <translation>部分的总数，由环境说明是哪一个时使用。</translation>
    </message>
    <message>
        <source>Makes one report of those of all parts.</source>
        <translation>把各部分的报告合成一份。</translation>
    </message>
    <message>
        <source>Installs this channel&apos;s package on a device afterwards.</source>
        <translation>之后把这个渠道的安装包装到设备上。</translation>
    </message>
    <message>
        <source>The device of --install, by its serial.</source>
        <translation>--install 的设备，用序列号指定。</translation>
    </message>
    <message>
        <source>Does not ask before --install removes the installed package.</source>
        <translation>--install 移除已装的应用包之前不询问。</translation>
    </message>
    <message>
        <source>Each channel&apos;s package comes from the job&apos;s base: with the channel&apos;s icons, its SDKs, its own files and a description of it, encrypted and signed where the job says so. Everything finished is in the job&apos;s output folder, with report.html and report.json. What has not changed since the last run is not built again, and a run that was interrupted goes on where it stood.</source>
        <translation>每个渠道的安装包都来自任务的基础包：带有该渠道的图标、SDK、自己的文件和说明，并按任务的要求加密和签名。完成的内容都在任务的输出文件夹中，包括 report.html 和 report.json。自上次运行以来没有变化的内容不再构建，被中断的运行从中断处继续。</translation>
    </message>
    <message>
        <source>--only: there is no channel &apos;%1&apos;</source>
        <translation>--only：没有渠道“%1”</translation>
    </message>
    <message>
        <source>Builds this channel, and others named likewise; the rest stay as they are.</source>
        <translation>只构建这个渠道，以及同样指定的其他渠道；其余的保持不变。</translation>
    </message>
</context>
<context>
    <name>BuildInputs</name>
    <message>
        <source>asking tools for their versions</source>
        <translation>正在查询工具的版本</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read: %2</source>
        <translation>无法读取 &apos;%1&apos;：%2</translation>
    </message>
</context>
<context>
    <name>BuildPreparation</name>
    <message>
        <source>the folder &apos;%1&apos; cannot be made</source>
        <translation>无法创建文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>importing</source>
        <translation>正在导入</translation>
    </message>
    <message>
        <source>the SDK &apos;%1&apos; cannot be imported: %2</source>
        <translation>无法导入 SDK &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>the icon &apos;%1&apos; was not written: %2</source>
        <translation>图标 &apos;%1&apos; 没有写入：%2</translation>
    </message>
    <message>
        <source>the icons cannot be brought to the disk: %1</source>
        <translation>图标无法写入磁盘：%1</translation>
    </message>
</context>
<context>
    <name>BuildRecords</name>
    <message>
        <source>%1, and %2 more</source>
        <translation>%1，另有 %2 个错误</translation>
    </message>
    <message>
        <source>no thread could be started for the build records</source>
        <translation>无法为构建记录启动线程</translation>
    </message>
    <message>
        <source>no build records are open</source>
        <translation>没有打开的构建记录</translation>
    </message>
    <message>
        <source>the build records &apos;%1&apos; are not complete: %2</source>
        <translation>构建记录 &apos;%1&apos; 不完整：%2</translation>
    </message>
    <message>
        <source>the build records &apos;%1&apos; are locked by another program</source>
        <translation>构建记录 &apos;%1&apos; 被其他程序锁定</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no file of build records, or a damaged one: %2</source>
        <translation>&apos;%1&apos; 不是构建记录文件，或已损坏：%2</translation>
    </message>
    <message>
        <source>the build records &apos;%1&apos; cannot be used: %2</source>
        <translation>构建记录 &apos;%1&apos; 无法使用：%2</translation>
    </message>
    <message>
        <source>the build records &apos;%1&apos; are of a newer version of this program</source>
        <translation>构建记录 &apos;%1&apos; 来自本程序的更新版本</translation>
    </message>
    <message>
        <source>&apos;%1&apos; holds no build records</source>
        <translation>&apos;%1&apos; 不含构建记录</translation>
    </message>
    <message>
        <source>the build records &apos;%1&apos; are no file</source>
        <translation>构建记录 &apos;%1&apos; 不是文件</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; of the build records cannot be made</source>
        <translation>无法创建构建记录的文件夹 &apos;%1&apos;</translation>
    </message>
</context>
<context>
    <name>BuildRun</name>
    <message>
        <source>&apos;%1&apos; changed during the run</source>
        <translation>&apos;%1&apos; 在运行期间发生了变化</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be opened: %2</source>
        <translation>无法打开 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be locked (%2): see to it that one run alone is at work there</source>
        <translation>无法锁定 &apos;%1&apos;（%2）：请确保那里只有一次运行在工作</translation>
    </message>
    <message>
        <source>preparing</source>
        <translation>正在准备</translation>
    </message>
    <message>
        <source>another run of this job is at work in &apos;%1&apos;</source>
        <translation>该任务的另一次运行正在 &apos;%1&apos; 中工作</translation>
    </message>
    <message>
        <source>building</source>
        <translation>正在构建</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; cannot be made</source>
        <translation>无法创建文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>importing SDKs</source>
        <translation>导入 SDK</translation>
    </message>
    <message>
        <source>decoding the base</source>
        <translation>解码基础包</translation>
    </message>
    <message>
        <source>drawing icons</source>
        <translation>绘制图标</translation>
    </message>
    <message>
        <source>channel &apos;%1&apos; failed: %2</source>
        <translation>渠道 &apos;%1&apos; 失败：%2</translation>
    </message>
    <message>
        <source>%1: built, %2</source>
        <translation>%1：已构建，%2</translation>
    </message>
    <message>
        <source>%1: unchanged</source>
        <translation>%1：没有变化</translation>
    </message>
    <message>
        <source>writing the report</source>
        <translation>写报告</translation>
    </message>
    <message>
        <source>interrupted; the same command goes on with the rest</source>
        <translation>已中断；同样的命令会继续其余部分</translation>
    </message>
    <message>
        <source>failed: %1 of %2 channels</source>
        <translation>失败：%2 个渠道中的 %1 个</translation>
    </message>
    <message>
        <source>not every channel was reached</source>
        <translation>并非每个渠道都已处理</translation>
    </message>
    <message>
        <source>the output &apos;%1&apos; cannot be brought to the disk: %2</source>
        <translation>输出 &apos;%1&apos; 无法写入磁盘：%2</translation>
    </message>
    <message>
        <source>the base&apos;s icon &apos;%1&apos; is no PNG file and stays as it is</source>
        <translation>基础包的图标 &apos;%1&apos; 不是 PNG 文件，保持不变</translation>
    </message>
    <message>
        <source>the base shows no icon, and the packages do not show one either</source>
        <translation>基础包没有图标，生成的包也没有图标</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read: %2</source>
        <translation>无法读取 &apos;%1&apos;：%2</translation>
    </message>
</context>
<context>
    <name>BuildWorkers</name>
    <message>
        <source>&apos;%1&apos; cannot be written: %2</source>
        <translation>无法写入 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>a process of the build ended early: %1</source>
        <translation>构建的一个进程提前结束：%1</translation>
    </message>
    <message>
        <source>a process of the build ended early</source>
        <translation>构建的一个进程提前结束</translation>
    </message>
    <message>
        <source>a process of the build was killed</source>
        <translation>构建的一个进程被终止</translation>
    </message>
</context>
<context>
    <name>ChannelBuild</name>
    <message>
        <source>&apos;%1&apos; cannot be removed: %2</source>
        <translation>无法删除 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; cannot be made</source>
        <translation>无法创建文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the run was interrupted</source>
        <translation>运行被中断</translation>
    </message>
    <message>
        <source>there are no icons for %1</source>
        <translation>没有 %1 的图标</translation>
    </message>
    <message>
        <source>the icon &apos;%1&apos; cannot be moved</source>
        <translation>无法移动图标 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be removed</source>
        <translation>无法删除 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the assets cannot be encrypted</source>
        <translation>无法加密资源</translation>
    </message>
    <message>
        <source>the package cannot be signed: %1</source>
        <translation>无法签名安装包：%1</translation>
    </message>
    <message>
        <source>the package calls itself %1, version %2, and not %3, version %4</source>
        <translation>安装包自称 %1，版本 %2，而不是 %3，版本 %4</translation>
    </message>
    <message>
        <source>the package shows other icons than the base</source>
        <translation>安装包显示的图标与基础包不同</translation>
    </message>
    <message>
        <source>exporting</source>
        <translation>正在导出</translation>
    </message>
    <message>
        <source>the developer record %1 cannot be exported</source>
        <translation>无法导出开发者记录 %1</translation>
    </message>
    <message>
        <source>not everything could be moved from &apos;%1&apos;</source>
        <translation>未能移走 &apos;%1&apos; 中的全部内容</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be written: %2</source>
        <translation>无法写入 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>the icon &apos;%1&apos; is no PNG file and stays that of the base</source>
        <translation>图标 &apos;%1&apos; 不是 PNG 文件，保持基础包原样</translation>
    </message>
</context>
<context>
    <name>Channels</name>
    <message>
        <source>channel %1</source>
        <translation>渠道 %1</translation>
    </message>
    <message>
        <source>is not an object</source>
        <translation>不是对象</translation>
    </message>
    <message>
        <source>unknown key &quot;%1&quot;; the keys are %2</source>
        <translation>未知的键 &quot;%1&quot;；可用的键有 %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a text</source>
        <translation>&quot;%1&quot; 不是文本</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a whole number of pixels</source>
        <translation>&quot;%1&quot; 不是整数像素值</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is none of %2, nor a number from 0 to 4</source>
        <translation>&quot;%1&quot; 不是 %2 中的任何一个，也不是 0 到 4 的数字</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>标准输入</translation>
    </message>
    <message>
        <source>%1 is not a regular file</source>
        <translation>%1 不是普通文件</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2</source>
        <translation>无法读取 %1：%2</translation>
    </message>
    <message>
        <source>%1 is not JSON: %2 at %3</source>
        <translation>%1 不是 JSON：%2，位于 %3</translation>
    </message>
    <message>
        <source>%1 does not hold an array of channels</source>
        <translation>%1 中不是渠道数组</translation>
    </message>
    <message>
        <source>is missing or empty</source>
        <translation>缺失或为空</translation>
    </message>
    <message>
        <source>is &quot;%1&quot;, which is no name of a folder</source>
        <translation>的值 &quot;%1&quot; 不能用作文件夹名</translation>
    </message>
    <message>
        <source>holds a slash, a backslash or a control character</source>
        <translation>含有斜杠、反斜杠或控制字符</translation>
    </message>
    <message>
        <source>holds half of a surrogate pair, which no file name can</source>
        <translation>含有半个代理对，文件名中不允许</translation>
    </message>
    <message>
        <source>is longer than %1 bytes</source>
        <translation>超过 %1 个字节</translation>
    </message>
    <message>
        <source>CHANNELS.json holds an array with an object a channel:
  &quot;folder&quot;  the channel&apos;s folder in the output folder (required)
  &quot;name&quot;    what the sheet shows (the folder&apos;s name)
  &quot;mark&quot;    the mark&apos;s folder in the marks&apos; folder (none)
  &quot;corner&quot;  left-top, left-bottom, right-top, right-bottom, default,
            or 0 to 4 (default)
  &quot;x&quot;       the mark&apos;s distance from the icon&apos;s left edge, in pixels
  &quot;y&quot;       its height over the icon&apos;s top edge: -20 is 20 pixels below it
Without &quot;x&quot; or &quot;y&quot; the mark lies flush in its corner. With the corner &quot;default&quot; it goes where --default-corner, --default-x and --default-y put it, or flush into that corner. A mark&apos;s pictures are MARK/icon/left-top.png and so on.</source>
        <translation>CHANNELS.json 是一个数组，每个渠道对应一个对象：
  &quot;folder&quot;  渠道在输出文件夹中的子文件夹（必填）
  &quot;name&quot;    总览图上显示的名称（默认为文件夹名）
  &quot;mark&quot;    角标在角标文件夹中的子文件夹（默认无）
  &quot;corner&quot;  left-top/left-bottom/right-top/right-bottom/default/0 到 4
            （默认为 default）
  &quot;x&quot;       角标到图标左边缘的距离，以像素计
  &quot;y&quot;       角标高出图标上边缘的距离：-20 表示在其下方 20 像素
不给出 &quot;x&quot; 或 &quot;y&quot; 时，角标紧贴所在的角。角位为 &quot;default&quot; 时，角标放在 --default-corner、--default-x 和 --default-y 指定的位置，未指定则紧贴该角。角标的图片是 MARK/icon/left-top.png 等。</translation>
    </message>
</context>
<context>
    <name>Collected</name>
    <message>
        <source>the report %1 cannot be read: %2</source>
        <translation>无法读取报告 %1：%2</translation>
    </message>
    <message>
        <source>%1 is no report of this version</source>
        <translation>%1 不是此版本的报告</translation>
    </message>
    <message>
        <source>missing slices: %1</source>
        <translation>缺少的份：%1</translation>
    </message>
    <message>
        <source>missing slices: %1 and %2 more</source>
        <translation>缺少的份：%1，另有 %2 份</translation>
    </message>
    <message>
        <source>the slices are of different games: %1 and %2</source>
        <translation>各份属于不同的游戏：%1 和 %2</translation>
    </message>
    <message>
        <source>the job was changed between the slices: channel &apos;%1&apos; of slice %2/%3 is in another one as well, or belongs there; build them again</source>
        <translation>各份之间任务文件有改动：第 %2/%3 份中的渠道 &apos;%1&apos; 也在另一份中，或应属于另一份；请重新构建</translation>
    </message>
    <message>
        <source>there is no report of a slice</source>
        <translation>没有任何一份的报告</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>%1: missing: %2</source>
        <translation>%1: 缺少：%2</translation>
    </message>
    <message>
        <source>%1: &apos;%2&apos; is one word too many</source>
        <translation>%1: &apos;%2&apos; 是多余的</translation>
    </message>
    <message>
        <source>%1: unknown option &apos;%2&apos;</source>
        <translation>%1: 未知选项 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>--quiet and --verbose exclude each other</source>
        <translation>--quiet 与 --verbose 不能同时使用</translation>
    </message>
    <message>
        <source>no command given</source>
        <translation>没有给出命令</translation>
    </message>
    <message>
        <source>unknown command &apos;%1&apos;</source>
        <translation>未知命令 &apos;%1&apos;</translation>
    </message>
</context>
<context>
    <name>Console</name>
    <message>
        <source>y</source>
        <translation>y</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>yes</translation>
    </message>
    <message>
        <source>called off; nothing was changed</source>
        <translation>已取消；没有任何改动</translation>
    </message>
    <message>
        <source>see quenzo %1</source>
        <translation>参见 quenzo %1</translation>
    </message>
</context>
<context>
    <name>DBCommands</name>
    <message>
        <source>there is no database file &apos;%1&apos;; create --init makes one</source>
        <translation>没有数据库文件 &apos;%1&apos;；可用 create --init 新建</translation>
    </message>
    <message>
        <source>there is no column &apos;%1&apos; to unscramble</source>
        <translation>没有可还原的列 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>rows: %1</source>
        <translation>行数：%1</translation>
    </message>
    <message>
        <source>inserted into %1, rows: %2</source>
        <translation>已插入到 %1，行数：%2</translation>
    </message>
    <message>
        <source>the table %1 cannot be made: %2</source>
        <translation>无法创建表 %1：%2</translation>
    </message>
    <message>
        <source>made the table %1</source>
        <translation>已创建表 %1</translation>
    </message>
    <message>
        <source>db: &apos;%1&apos; is one word too many</source>
        <translation>db: &apos;%1&apos; 是多余的</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read: %2</source>
        <translation>无法读取 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>--init is for create</source>
        <translation>--init 只用于 create</translation>
    </message>
    <message>
        <source>the standard input is not UTF-8 text</source>
        <translation>标准输入不是 UTF-8 文本</translation>
    </message>
    <message>
        <source>a text of less than four bytes encodes to an empty one</source>
        <translation>不足四个字节的文本编码后为空</translation>
    </message>
    <message>
        <source>writes, changes, removes and reads records of a database file</source>
        <translation>写入、修改、删除和读取数据库文件中的记录</translation>
    </message>
    <message>
        <source>insert writes rows; update writes new values into the rows that meet --where; delete removes and select reads the rows that meet every --where; tables and schema tell what there is; create makes a table</source>
        <translation>insert 写入行；update 把新值写入满足 --where 的行；delete 删除、select 读取满足所有 --where 的行；tables 和 schema 显示现有结构；create 建表</translation>
    </message>
    <message>
        <source>the table&apos;s name, but for tables, and if one is meant for schema</source>
        <translation>表名；tables 不需要，schema 只看某张表时给出</translation>
    </message>
    <message>
        <source>values to insert or update, as text; without any, or with -, each line of the standard input is a row, a JSON object of names to values; for create COLUMN:TYPE, with the types text, integer, real, numeric and blob</source>
        <translation>要插入或更新的值，均为文本；不给出值或给出 - 时，标准输入的每一行是一行记录，即由列名到值的 JSON 对象；对于 create 是 COLUMN:TYPE，类型有 text、integer、real、numeric 和 blob</translation>
    </message>
    <message>
        <source>The database file, which exists.</source>
        <translation>数据库文件，必须已存在。</translation>
    </message>
    <message>
        <source>A condition, compared as text; may be repeated for select and delete, and is given once for update.</source>
        <translation>条件，按文本比较；用于 select 和 delete 时可重复，用于 update 时只能给出一次。</translation>
    </message>
    <message>
        <source>Empties the table: for delete without a condition.</source>
        <translation>清空整张表：用于不带条件的 delete。</translation>
    </message>
    <message>
        <source>Writes values scrambled, of this column, or of all if none is named; may be repeated. Give it behind the table, or as --encode=COLUMN. With columns, conditions on them are compared scrambled. Without, delete compares with scrambled values; update leaves its condition plain; select unscrambles its conditions.</source>
        <translation>写入时对该列的值加扰，不指名则对所有列加扰；可重复。请写在表名之后，或写成 --encode=COLUMN。指名列时，这些列上的条件按加扰后的值比较。不指名时，delete 按加扰后的值比较；update 的条件保持原样；select 还原其条件。</translation>
    </message>
    <message>
        <source>Writes scrambled what cannot be brought back: null, less than four bytes, a zero byte.</source>
        <translation>无法还原的值也加扰写入：空值、不足四个字节、含零字节。</translation>
    </message>
    <message>
        <source>Makes the file with its first table: for create.</source>
        <translation>新建文件及其第一张表：用于 create。</translation>
    </message>
    <message>
        <source>Unscrambles this column of what select has read; may be repeated.</source>
        <translation>还原 select 所读出的这一列；可重复。</translation>
    </message>
    <message>
        <source>Goes without the queue: each row is committed by itself, and those before a failed one stay. The queue writes all rows of an insert or none; of an update, what the rows before a failed one changed stays, too, unless the table says ON CONFLICT ROLLBACK or the disk is full.</source>
        <translation>不经过队列：每行单独提交，出错行之前的行保留。队列对一次 insert 要么写入所有行，要么一行不写；对一次 update，出错行之前各行的改动也会保留，除非该表声明了 ON CONFLICT ROLLBACK 或磁盘已满。</translation>
    </message>
    <message>
        <source>Prints rows as CSV; otherwise as a table on a terminal, elsewhere as JSON lines.</source>
        <translation>以 CSV 输出各行；否则在终端上输出表格，在别处输出 JSON 行。</translation>
    </message>
    <message>
        <source>the text; - is the standard input, without its last line break</source>
        <translation>文本；- 表示标准输入，不含其最后一个换行</translation>
    </message>
    <message>
        <source>scrambles a text as db --encode does</source>
        <translation>按 db --encode 的方式对文本加扰</translation>
    </message>
    <message>
        <source>unscrambles such a text</source>
        <translation>还原这样加扰过的文本</translation>
    </message>
    <message>
        <source>the text is not what encode makes of this result</source>
        <translation>该文本不是由 encode 对此结果生成的</translation>
    </message>
    <message>
        <source>%1 or --all</source>
        <translation>%1 或 --all</translation>
    </message>
    <message>
        <source>updated %1, statements: %2, rows: %3</source>
        <translation>已更新 %1，语句数：%2，行数：%3</translation>
    </message>
    <message>
        <source>deleted from %1, rows: %2</source>
        <translation>已从 %1 中删除，行数：%2</translation>
    </message>
    <message>
        <source>A row of the input whose values would not be kept as they are is refused, and nothing is written: one with a column given twice, an integer beyond 64 bits, or half a surrogate pair.
JSON shows reals without a fraction as whole numbers, bytes as Base64, and integers beyond 2^53 and infinite numbers (9e999) as text. Inserted again, the latter are numbers in columns of a numeric type, and text in others.</source>
        <translation>输入中若有某行的值无法原样保存，则拒绝该行，且不写入任何内容：同一列给出两次、整数超出 64 位，或只有半个代理对。
JSON 中没有小数部分的实数显示为整数，字节串显示为 Base64，超出 2^53 的整数和无穷大（9e999）显示为文本。再次插入时，后者在数值类型的列中仍是数字，在其他列中则是文本。</translation>
    </message>
    <message>
        <source>reading rows</source>
        <translation>正在读取行</translation>
    </message>
</context>
<context>
    <name>DBRequestTexts</name>
    <message>
        <source>&apos;%1&apos; is not of the form COLUMN=VALUE</source>
        <translation>&apos;%1&apos; 不是 COLUMN=VALUE 的形式</translation>
    </message>
    <message>
        <source>the column &apos;%1&apos; is given twice</source>
        <translation>列 &apos;%1&apos; 给出了两次</translation>
    </message>
    <message>
        <source>an insert takes no --where</source>
        <translation>insert 不接受 --where</translation>
    </message>
    <message>
        <source>an update takes exactly one --where COLUMN=VALUE, and no empty value</source>
        <translation>update 需要且只能有一个 --where COLUMN=VALUE，且值不能为空</translation>
    </message>
    <message>
        <source>a delete takes either --where COLUMN=VALUE or --all</source>
        <translation>delete 需要 --where COLUMN=VALUE 或 --all 之一</translation>
    </message>
    <message>
        <source>--all is for a delete</source>
        <translation>--all 只用于 delete</translation>
    </message>
    <message>
        <source>the condition&apos;s column &apos;%1&apos; cannot be written under the same name; &apos;%2&apos; would do</source>
        <translation>条件中的列 &apos;%1&apos; 不能以同样的名称写入；可以用 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>a row needs a column</source>
        <translation>一行至少需要一列</translation>
    </message>
    <message>
        <source>a row has more columns, %1, than any table</source>
        <translation>一行有 %1 列，比任何表都多</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no name: letters, digits and underscores of ASCII make one</source>
        <translation>&apos;%1&apos; 不是合法名称：名称由 ASCII 字母、数字和下划线组成</translation>
    </message>
    <message>
        <source>conditions are given as --where COLUMN=VALUE</source>
        <translation>条件要写成 --where COLUMN=VALUE</translation>
    </message>
    <message>
        <source>--encode is for all columns or for those that are named, not for both</source>
        <translation>--encode 要么用于所有列，要么用于指名的列，不能兼用</translation>
    </message>
    <message>
        <source>line %1 of the input: %2</source>
        <translation>输入的第 %1 行：%2</translation>
    </message>
    <message>
        <source>the column &apos;%1&apos; of --encode is not among those to be written</source>
        <translation>--encode 的列 &apos;%1&apos; 不在要写入的列之中</translation>
    </message>
</context>
<context>
    <name>DBSession</name>
    <message>
        <source>waiting for the database</source>
        <translation>正在等待数据库</translation>
    </message>
    <message>
        <source>This is row %1 of %2; those before it stay written.</source>
        <translation>这是第 %1 行，共 %2 行；之前的行已写入并保留。</translation>
    </message>
    <message>
        <source>No row is written.</source>
        <translation>没有写入任何行。</translation>
    </message>
    <message>
        <source>What the rows before this one changed stays written.</source>
        <translation>这一行之前各行的改动已写入并保留。</translation>
    </message>
    <message>
        <source>What the rows before this one changed is undone, too.</source>
        <translation>这一行之前各行的改动也已撤销。</translation>
    </message>
    <message>
        <source>the transaction on %1 cannot be committed: %2. Nothing is written.</source>
        <translation>无法提交 %1 上的事务：%2。没有写入任何内容。</translation>
    </message>
    <message>
        <source>no thread could be started for the work; nothing was done</source>
        <translation>无法启动工作线程；没有做任何事</translation>
    </message>
    <message>
        <source>writing rows</source>
        <translation>正在写入行</translation>
    </message>
</context>
<context>
    <name>DBStructure</name>
    <message>
        <source>no such table: %1</source>
        <translation>没有这张表：%1</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not of the form COLUMN:TYPE with one of the types text, integer, real, numeric and blob</source>
        <translation>&apos;%1&apos; 不是 COLUMN:TYPE 的形式，类型为 text、integer、real、numeric 和 blob 之一</translation>
    </message>
</context>
<context>
    <name>DeviceCommands</name>
    <message>
        <source>asking for devices</source>
        <translation>正在查询设备</translation>
    </message>
    <message>
        <source>not usable: %1</source>
        <translation>不可用：%1</translation>
    </message>
    <message>
        <source>the devices cannot be listed</source>
        <translation>无法列出设备</translation>
    </message>
    <message>
        <source>%1: no such file</source>
        <translation>%1: 没有这个文件</translation>
    </message>
    <message>
        <source>%1: a path with a quotation mark cannot be used; rename it</source>
        <translation>%1: 不能使用含引号的路径；请重命名</translation>
    </message>
    <message>
        <source>reading the package name</source>
        <translation>正在读取包名</translation>
    </message>
    <message>
        <source>%1: aapt finds no package name; is it an APK?</source>
        <translation>%1: aapt 找不到包名；它是 APK 吗？</translation>
    </message>
    <message>
        <source>%1: &quot;%2&quot; cannot be the name of a package</source>
        <translation>%1: &quot;%2&quot; 不能用作包名</translation>
    </message>
    <message>
        <source>no device is ready</source>
        <translation>没有就绪的设备</translation>
    </message>
    <message>
        <source>connect one, unlock it and allow debugging</source>
        <translation>请连接一台设备，解锁并允许调试</translation>
    </message>
    <message>
        <source>the device %1 is not ready. Ready:</source>
        <translation>设备 %1 未就绪。就绪的有：</translation>
    </message>
    <message>
        <source>several devices are ready</source>
        <translation>有多台设备就绪</translation>
    </message>
    <message>
        <source>choose one by -s SERIAL</source>
        <translation>请用 -s SERIAL 选择一台</translation>
    </message>
    <message>
        <source>several devices are ready:</source>
        <translation>有多台设备就绪：</translation>
    </message>
    <message>
        <source>Number of the device:</source>
        <translation>设备编号：</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is none of the numbers 1 to %2. Number of the device:</source>
        <translation>&apos;%1&apos; 不是 1 到 %2 中的数字。设备编号：</translation>
    </message>
    <message>
        <source>no device was chosen</source>
        <translation>没有选择设备</translation>
    </message>
    <message>
        <source>Remove %1 and its data from %2 before the install? [y/N]</source>
        <translation>安装前从 %2 移除 %1 及其数据吗？[y/N]</translation>
    </message>
    <message>
        <source>Remove %1 and its data from %2? [y/N]</source>
        <translation>从 %2 移除 %1 及其数据吗？[y/N]</translation>
    </message>
    <message>
        <source>no outcome was reported within %1 s. adb failed without a code, could not be started, or is still at work.</source>
        <translation>%1 秒内没有报告结果。adb 失败但没有给出代码、无法启动，或者仍在运行。</translation>
    </message>
    <message>
        <source>adb crashed without a word</source>
        <translation>adb 崩溃，没有任何输出</translation>
    </message>
    <message>
        <source>--timeout takes a duration such as 90s or 2m, at most 24h</source>
        <translation>--timeout 需要一个时长，例如 90s 或 2m，最长 24h</translation>
    </message>
    <message>
        <source>this removes a package and its data: --yes is needed where nobody can be asked</source>
        <translation>这会删除一个包及其数据：无法询问用户时必须给出 --yes</translation>
    </message>
    <message>
        <source>%1: a serial with a quotation mark cannot be used</source>
        <translation>%1: 不能使用含引号的序列号</translation>
    </message>
    <message>
        <source>the APK file</source>
        <translation>APK 文件</translation>
    </message>
    <message>
        <source>The device, by its serial as &quot;quenzo devices&quot; prints it. Default: ANDROID_SERIAL, or else the only one.</source>
        <translation>设备，用 &quot;quenzo devices&quot; 所列的序列号表示。默认：ANDROID_SERIAL，否则为唯一的那台设备。</translation>
    </message>
    <message>
        <source>Gives up after this time, such as 90s or 2m. Default: 10m.</source>
        <translation>超过此时长则放弃，例如 90s 或 2m。默认：10m。</translation>
    </message>
    <message>
        <source>Does not ask before it removes the installed package. Needed where no terminal is.</source>
        <translation>删除已安装的包之前不询问。没有终端时必须给出。</translation>
    </message>
    <message>
        <source>lists the attached Android devices that are ready</source>
        <translation>列出已连接并就绪的 Android 设备</translation>
    </message>
    <message>
        <source>prints the package name of an APK</source>
        <translation>显示 APK 的包名</translation>
    </message>
    <message>
        <source>installs an APK on a device, in the place of its package</source>
        <translation>在设备上安装 APK，取代已安装的包</translation>
    </message>
    <message>
        <source>The installed package is always removed first, with all its data. There is no way back: it is gone even if the device then refuses the APK. On a terminal you are asked first.</source>
        <translation>总是先删除已安装的包及其所有数据。此操作不可撤销：即使设备随后拒绝该 APK，原来的包也已不在。在终端上会先询问。</translation>
    </message>
    <message>
        <source>removes an APK&apos;s package from a device</source>
        <translation>从设备上卸载 APK 的包</translation>
    </message>
    <message>
        <source>All data of the package goes with it. On a terminal you are asked first.</source>
        <translation>该包的所有数据会一并删除。在终端上会先询问。</translation>
    </message>
</context>
<context>
    <name>DeviceTask</name>
    <message>
        <source>interrupted; nothing was changed on %1</source>
        <translation>已中断；%1 上没有任何改动</translation>
    </message>
    <message>
        <source>interrupted on %1. The last of these may be done or not:</source>
        <translation>已在 %1 上中断。以下最后一项可能已完成，也可能没有：</translation>
    </message>
    <message>
        <source>installing on %1</source>
        <translation>正在安装到 %1</translation>
    </message>
    <message>
        <source>uninstalling from %1</source>
        <translation>正在从 %1 卸载</translation>
    </message>
</context>
<context>
    <name>DryRun</name>
    <message>
        <source>would remove &apos;%1&apos;</source>
        <translation>将删除 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>would write &apos;%1&apos;, which is replaced</source>
        <translation>将写入 &apos;%1&apos;，原文件将被替换</translation>
    </message>
    <message>
        <source>would write &apos;%1&apos;</source>
        <translation>将写入 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>would write files: %1, and remove: %2</source>
        <translation>将写入的文件数：%1，将删除的文件数：%2</translation>
    </message>
</context>
<context>
    <name>Figures</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 字节</translation>
    </message>
    <message>
        <source>kB</source>
        <translation>kB</translation>
    </message>
    <message>
        <source>MB</source>
        <translation>MB</translation>
    </message>
    <message>
        <source>GB</source>
        <translation>GB</translation>
    </message>
    <message>
        <source>TB</source>
        <translation>TB</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1 分 %2 秒</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 小时 %2 分</translation>
    </message>
</context>
<context>
    <name>HelpText</name>
    <message>
        <source>Usage: quenzo COMMAND [options] [arguments]</source>
        <translation>用法: quenzo COMMAND [选项] [参数]</translation>
    </message>
    <message>
        <source>Commands:</source>
        <translation>命令:</translation>
    </message>
    <message>
        <source>-h and -V are help and version, too. Words behind -- are no options.</source>
        <translation>-h 和 -V 也是帮助和版本。-- 之后的词都不是选项。</translation>
    </message>
    <message>
        <source>Exit codes:</source>
        <translation>退出码:</translation>
    </message>
    <message>
        <source>Usage: quenzo %1 [options]</source>
        <translation>用法: quenzo %1 [选项]</translation>
    </message>
    <message>
        <source>Options:</source>
        <translation>选项:</translation>
    </message>
    <message>
        <source>Arguments:</source>
        <translation>参数:</translation>
    </message>
</context>
<context>
    <name>IconCommands</name>
    <message>
        <source>--layout %1 is for the platform %2</source>
        <translation>--layout %1 用于平台 %2</translation>
    </message>
    <message>
        <source>--name belongs to the other layouts than plain</source>
        <translation>--name 只用于 plain 以外的布局</translation>
    </message>
    <message>
        <source>no icon of a package can be named &apos;%1&apos;</source>
        <translation>包中的图标不能命名为 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>--background belongs to the layout android-adaptive</source>
        <translation>--background 只用于布局 android-adaptive</translation>
    </message>
    <message>
        <source>--onto belongs to the layout android-res, and takes the names from the package</source>
        <translation>--onto 只用于布局 android-res，图标名取自该包</translation>
    </message>
    <message>
        <source>--clear belongs to the layout plain; the others delete nothing</source>
        <translation>--clear 只用于布局 plain；其他布局不删除任何内容</translation>
    </message>
    <message>
        <source>the standard output is either for --json or for the sheet</source>
        <translation>标准输出只能用于 --json 或总览图之一</translation>
    </message>
    <message>
        <source>--keep and --clear exclude each other</source>
        <translation>--keep 与 --clear 不能同时使用</translation>
    </message>
    <message>
        <source>--default-x and --default-y take whole numbers of pixels</source>
        <translation>--default-x 和 --default-y 需要整数像素值</translation>
    </message>
    <message>
        <source>the icon &apos;%1&apos; cannot be read: %2</source>
        <translation>无法读取图标 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>the background &apos;%1&apos; cannot be read: %2</source>
        <translation>无法读取背景图 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>the marks&apos; folder &apos;%1&apos; does not exist</source>
        <translation>角标文件夹 &apos;%1&apos; 不存在</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be found: the current folder is gone; give a whole path</source>
        <translation>找不到 &apos;%1&apos;：当前文件夹已不存在；请给出完整路径</translation>
    </message>
    <message>
        <source>and %1 more like these</source>
        <translation>以及另外 %1 个类似的</translation>
    </message>
    <message>
        <source>not written in %1: %2</source>
        <translation>%1 中未能写入：%2</translation>
    </message>
    <message>
        <source>not written: %1 of %2 files</source>
        <translation>未写入：%1 / %2 个文件</translation>
    </message>
    <message>
        <source>%1, channels: %2</source>
        <translation>%1，渠道：%2</translation>
    </message>
    <message>
        <source>the sheet &apos;%1&apos; cannot be written: %2</source>
        <translation>无法写入总览图 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>no font was found; the sheet has neither a title nor names</source>
        <translation>找不到任何字体；总览图上既没有标题也没有名称</translation>
    </message>
    <message>
        <source>channel &apos;%1&apos;: no installed font has %2; the sheet shows boxes there</source>
        <translation>渠道 &apos;%1&apos;：已安装的字体都没有 %2；总览图在那里显示方框</translation>
    </message>
    <message>
        <source>the next run into %1 will need --clear</source>
        <translation>下次运行写入 %1 时需要 --clear</translation>
    </message>
    <message>
        <source>not deleted: %1</source>
        <translation>未删除：%1</translation>
    </message>
    <message>
        <source>%1 of %2 files in %3 s, channels: %4, folder: %5</source>
        <translation>%1 / %2 个文件，用时 %3 秒，渠道数：%4，文件夹：%5</translation>
    </message>
    <message>
        <source>makes every channel&apos;s launcher icons</source>
        <translation>生成每个渠道的启动图标</translation>
    </message>
    <message>
        <source>the list of channels, see below; - reads it from the standard input</source>
        <translation>渠道列表，格式见下文；- 表示从标准输入读取</translation>
    </message>
    <message>
        <source>The game&apos;s icon, in any usual format.</source>
        <translation>游戏图标，任何常用图片格式均可。</translation>
    </message>
    <message>
        <source>The folder that holds a folder a mark.</source>
        <translation>角标文件夹，其中每个角标各占一个子文件夹。</translation>
    </message>
    <message>
        <source>The output folder. With the layout plain it is deleted first, and must be empty or of an earlier run; the others only add to it.</source>
        <translation>输出文件夹。使用 plain 布局时会先将其删除，因此它必须为空或来自之前的运行；其他布局只往里添加。</translation>
    </message>
    <message>
        <source>The set of sizes: android or ios. Other layouts than plain name it.</source>
        <translation>尺寸集：android 或 ios。plain 以外的布局已各自确定。</translation>
    </message>
    <message>
        <source>How they are arranged: %1 (plain).</source>
        <translation>图标的排布方式：%1（plain）。</translation>
    </message>
    <message>
        <source>The icon&apos;s name in the package (ic_launcher, AppIcon).</source>
        <translation>图标在包中的名称（ic_launcher、AppIcon）。</translation>
    </message>
    <message>
        <source>The built package whose icons these replace, for android-res.</source>
        <translation>已构建的包，其图标将被这些图标替换；用于 android-res。</translation>
    </message>
    <message>
        <source>The picture behind the icon, for android-adaptive.</source>
        <translation>图标背后的背景图，用于 android-adaptive。</translation>
    </message>
    <message>
        <source>The corner of channels with the corner &quot;default&quot; (right-bottom).</source>
        <translation>角位为 &quot;default&quot; 的渠道所用的角（right-bottom）。</translation>
    </message>
    <message>
        <source>Where these channels&apos; marks go, as &quot;x&quot; (flush in the corner).</source>
        <translation>这些渠道的角标位置，同 &quot;x&quot;（紧贴该角）。</translation>
    </message>
    <message>
        <source>Where these channels&apos; marks go, as &quot;y&quot; (flush in the corner).</source>
        <translation>这些渠道的角标位置，同 &quot;y&quot;（紧贴该角）。</translation>
    </message>
    <message>
        <source>Deletes nothing: files of the same names are overwritten.</source>
        <translation>不删除任何内容：只覆盖同名文件。</translation>
    </message>
    <message>
        <source>Deletes an output folder that no earlier run has made, too.</source>
        <translation>即使输出文件夹不是之前的运行所创建，也将其删除。</translation>
    </message>
    <message>
        <source>Leaves icons unmarked whose marks are missing or cannot be read.</source>
        <translation>角标缺失或无法读取时，图标不加角标。</translation>
    </message>
    <message>
        <source>Tells file by file what would be written and deleted, and does nothing.</source>
        <translation>逐个文件列出将写入和删除的内容，不做任何改动。</translation>
    </message>
    <message>
        <source>Draws all channels&apos; icons with their names into one picture; - is the standard output.</source>
        <translation>把所有渠道的图标连同名称画进一张图；- 表示标准输出。</translation>
    </message>
</context>
<context>
    <name>IconProduction</name>
    <message>
        <source>drawing</source>
        <translation>正在绘制</translation>
    </message>
    <message>
        <source>no icon is made: the system gives no threads for it</source>
        <translation>没有生成任何图标：系统不提供所需的线程</translation>
    </message>
    <message>
        <source>no folder for files on the way can be made: %1</source>
        <translation>无法为中间文件创建文件夹：%1</translation>
    </message>
    <message>
        <source>arranging</source>
        <translation>正在排布</translation>
    </message>
</context>
<context>
    <name>InstallErrors</name>
    <message>
        <source>adb could not do its work.</source>
        <translation>adb 未能完成工作。</translation>
    </message>
    <message>
        <source>The program adb is not installed.</source>
        <translation>未安装程序 adb。</translation>
    </message>
    <message>
        <source>It took too long: is the device connected and unlocked, and does it allow debugging by this computer?</source>
        <translation>用时过长：设备是否已连接并解锁，是否允许这台电脑调试？</translation>
    </message>
    <message>
        <source>The installation was called off, on the device as a rule.</source>
        <translation>安装被取消，通常是在设备上取消的。</translation>
    </message>
    <message>
        <source>The package is installed already.</source>
        <translation>该包已经安装。</translation>
    </message>
    <message>
        <source>Another app on the device has a content provider of the same name.</source>
        <translation>设备上另一个应用有同名的 content provider。</translation>
    </message>
    <message>
        <source>The device could not prepare the app&apos;s code: often it lacks room.</source>
        <translation>设备无法准备应用的代码：往往是空间不足。</translation>
    </message>
    <message>
        <source>Another app on the device declares a permission of the same name.</source>
        <translation>设备上另一个应用声明了同名的权限。</translation>
    </message>
    <message>
        <source>The device does not have enough room.</source>
        <translation>设备空间不足。</translation>
    </message>
    <message>
        <source>The device failed for a reason of its own: often a restart of it helps.</source>
        <translation>设备因自身原因失败：重启设备往往有效。</translation>
    </message>
    <message>
        <source>The APK is damaged, or the device cannot use what is in it.</source>
        <translation>APK 已损坏，或设备无法使用其中的内容。</translation>
    </message>
    <message>
        <source>The device lacks a feature that the APK demands.</source>
        <translation>设备缺少 APK 要求的功能。</translation>
    </message>
    <message>
        <source>The device lacks a library that the APK demands.</source>
        <translation>设备缺少 APK 要求的库。</translation>
    </message>
    <message>
        <source>The APK&apos;s native code is for other processors than the device&apos;s.</source>
        <translation>APK 的原生代码适用的处理器与设备不同。</translation>
    </message>
    <message>
        <source>The device&apos;s Android is older than the APK demands.</source>
        <translation>设备的 Android 版本低于 APK 的要求。</translation>
    </message>
    <message>
        <source>The APK is marked for tests only: build it for release.</source>
        <translation>APK 标记为仅供测试：请构建发布版。</translation>
    </message>
    <message>
        <source>The package is still on the device, signed by another key: for another user of it, or as part of the system.</source>
        <translation>设备上仍有该包，且由另一个密钥签名：属于另一个用户，或是系统的一部分。</translation>
    </message>
    <message>
        <source>The device does not allow installing over USB: see its developer options.</source>
        <translation>设备不允许通过 USB 安装：请查看其开发者选项。</translation>
    </message>
    <message>
        <source>The device&apos;s app verification refused the APK.</source>
        <translation>设备的应用验证拒绝了该 APK。</translation>
    </message>
    <message>
        <source>A newer version of the package is still on the device.</source>
        <translation>设备上仍有该包的更新版本。</translation>
    </message>
    <message>
        <source>The APK&apos;s parts are signed by different keys.</source>
        <translation>APK 的各部分由不同的密钥签名。</translation>
    </message>
    <message>
        <source>The APK&apos;s manifest has an error.</source>
        <translation>APK 的清单文件有错误。</translation>
    </message>
    <message>
        <source>The APK is not signed, or not in a way that the device understands.</source>
        <translation>APK 未签名，或签名方式不被设备理解。</translation>
    </message>
    <message>
        <source>The file is no APK.</source>
        <translation>该文件不是 APK。</translation>
    </message>
    <message>
        <source>The device refused the APK.</source>
        <translation>设备拒绝了该 APK。</translation>
    </message>
</context>
<context>
    <name>InterruptReport</name>
    <message>
        <source>interrupted; the work may be done in part</source>
        <translation>已中断；工作可能只完成了一部分</translation>
    </message>
</context>
<context>
    <name>Job</name>
    <message>
        <source>the icon &apos;%1&apos;</source>
        <translation>图标 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the package &apos;%1&apos;</source>
        <translation>包 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the background &apos;%1&apos;</source>
        <translation>背景图 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the channel list &apos;%1&apos;</source>
        <translation>渠道列表 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the mark picture &apos;%1&apos;</source>
        <translation>角标图片 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the mark picture &apos;%1&apos; is not a regular file</source>
        <translation>角标图片 &apos;%1&apos; 不是普通文件</translation>
    </message>
    <message>
        <source>%1 is one of the files to be written</source>
        <translation>%1 是将要写入的文件之一</translation>
    </message>
    <message>
        <source>the sheet would replace %1</source>
        <translation>总览图会替换%1</translation>
    </message>
    <message>
        <source>the sheet would replace &apos;%1&apos;, one of the files to be written</source>
        <translation>总览图会替换 &apos;%1&apos;，它是将要写入的文件之一</translation>
    </message>
    <message>
        <source>the whole file system</source>
        <translation>整个文件系统</translation>
    </message>
    <message>
        <source>your home folder</source>
        <translation>您的主文件夹</translation>
    </message>
    <message>
        <source>the current folder</source>
        <translation>当前文件夹</translation>
    </message>
    <message>
        <source>this program</source>
        <translation>本程序</translation>
    </message>
    <message>
        <source>the icon</source>
        <translation>图标</translation>
    </message>
    <message>
        <source>the marks</source>
        <translation>角标</translation>
    </message>
    <message>
        <source>the channel list</source>
        <translation>渠道列表</translation>
    </message>
    <message>
        <source>the output folder &apos;%1&apos; is deleted first, and it holds %2 (--keep deletes nothing)</source>
        <translation>输出文件夹 &apos;%1&apos; 会先被删除，而其中有%2（--keep 不删除任何内容）</translation>
    </message>
    <message>
        <source>the output folder &apos;%1&apos; is not empty, and no earlier run has made it: --clear deletes what is in it, --keep leaves it</source>
        <translation>输出文件夹 &apos;%1&apos; 不为空，也不是之前的运行所创建：--clear 删除其中的内容，--keep 保留其中的内容</translation>
    </message>
    <message>
        <source>the icon has %1 pixels, and an app icon set takes a square one</source>
        <translation>图标为 %1 像素，而应用图标集需要正方形图标</translation>
    </message>
    <message>
        <source>the icon has %1 pixels, and is enlarged for the store&apos;s picture of %2</source>
        <translation>图标为 %1 像素，商店图片需放大到 %2</translation>
    </message>
    <message>
        <source>the icon has transparent parts, which become white in the store&apos;s picture</source>
        <translation>图标有透明部分，在商店图片中会变成白色</translation>
    </message>
    <message>
        <source>the mark lies outside the icon: its top left corner is at (%1, %2)</source>
        <translation>角标在图标之外：其左上角位于 (%1, %2)</translation>
    </message>
    <message>
        <source>the mark is cut off: it has %1 pixels at (%2, %3), and the icon has %4</source>
        <translation>角标被裁切：角标为 %1 像素，位于 (%2, %3)，而图标为 %4</translation>
    </message>
    <message>
        <source>the output folder &apos;%1&apos; is not a folder</source>
        <translation>输出文件夹 &apos;%1&apos; 不是文件夹</translation>
    </message>
    <message>
        <source>channel &apos;%1&apos;: %2</source>
        <translation>渠道 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>%1 also shows %2 as its icon, which stays</source>
        <translation>%1 还把 %2 作为图标，后者保持不变</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; is given twice; the later channel&apos;s icons stay</source>
        <translation>文件夹 &apos;%1&apos; 给出了两次；保留后一个渠道的图标</translation>
    </message>
    <message>
        <source>the sheet &apos;%1&apos; cannot be written: there is no folder &apos;%2&apos;</source>
        <translation>无法写入总览图 &apos;%1&apos;：文件夹 &apos;%2&apos; 不存在</translation>
    </message>
    <message>
        <source>channel &apos;%1&apos;: &quot;x&quot; and &quot;y&quot; do not count without a &quot;corner&quot;; the options of the default one place the mark</source>
        <translation>渠道 &apos;%1&apos;：没有 &quot;corner&quot; 时，&quot;x&quot; 和 &quot;y&quot; 不起作用；角标的位置由默认角的选项决定</translation>
    </message>
</context>
<context>
    <name>JobChannels</name>
    <message>
        <source>is not the number of a developer record</source>
        <translation>不是开发者记录的编号</translation>
    </message>
    <message>
        <source>is none of %1, nor a number from 0 to 4</source>
        <translation>不是 %1 中的任何一个，也不是 0 到 4 的数字</translation>
    </message>
    <message>
        <source>is empty; a job has at least one channel</source>
        <translation>为空；任务至少要有一个渠道</translation>
    </message>
    <message>
        <source>an object</source>
        <translation>对象</translation>
    </message>
    <message>
        <source>is %1, a name that the run needs itself</source>
        <translation>的值是 %1，这个名称由运行本身占用</translation>
    </message>
    <message>
        <source>is %1, and %2 has the same but for the case or form of its letters</source>
        <translation>的值是 %1，与 %2 只有字母大小写或字形编码的差别</translation>
    </message>
    <message>
        <source>is %1, and the job has no &quot;marks&quot; in its &quot;icons&quot;</source>
        <translation>的值是 %1，而任务的 &quot;icons&quot; 中没有 &quot;marks&quot;</translation>
    </message>
    <message>
        <source>is %1, no SDK of this job</source>
        <translation>的值是 %1，这个任务中没有这样的 SDK</translation>
    </message>
    <message>
        <source>is %1, which is no name of an Android package</source>
        <translation>的值是 %1，不是 Android 包名</translation>
    </message>
</context>
<context>
    <name>JobCommands</name>
    <message>
        <source>&apos;%1&apos; is no folder that can be made</source>
        <translation>&apos;%1&apos; 不是可以创建的文件夹</translation>
    </message>
    <message>
        <source>wrote %1; quenzo build %1 makes the packages</source>
        <translation>已写入 %1；quenzo build %1 生成安装包</translation>
    </message>
    <message>
        <source>writes a job to begin with</source>
        <translation>写出一个可供起步的任务</translation>
    </message>
    <message>
        <source>where it is written; must be empty or missing</source>
        <translation>写入的位置；必须为空或不存在</translation>
    </message>
    <message>
        <source>Your own game&apos;s APK, instead of the sample game.</source>
        <translation>您自己的游戏 APK，代替示例游戏。</translation>
    </message>
    <message>
        <source>Your own icon, instead of the sample&apos;s.</source>
        <translation>您自己的图标，代替示例图标。</translation>
    </message>
    <message>
        <source>Your own folder of marks, instead of the sample&apos;s: each becomes a channel.</source>
        <translation>您自己的角标文件夹，代替示例角标：每个角标成为一个渠道。</translation>
    </message>
    <message>
        <source>The job, FOLDER/job.json, can be built as it stands, and comments in it tell what else it may say. Files of your own stay where they are: the job names them. The sample&apos;s are copied.</source>
        <translation>任务 FOLDER/job.json 可以直接构建，其中的注释说明还可以写些什么。您自己的文件留在原处，由任务引用；示例文件会被复制。</translation>
    </message>
</context>
<context>
    <name>JobFile</name>
    <message>
        <source>does not exist</source>
        <translation>不存在</translation>
    </message>
    <message>
        <source>is not a regular file</source>
        <translation>不是普通文件</translation>
    </message>
    <message>
        <source>is larger than a job can be, %1 bytes</source>
        <translation>超过任务文件的最大长度 %1 个字节</translation>
    </message>
    <message>
        <source>cannot be read: %1</source>
        <translation>无法读取：%1</translation>
    </message>
    <message>
        <source>is not JSON: %1 at %2</source>
        <translation>不是 JSON：%1，位于 %2</translation>
    </message>
    <message>
        <source>is an array, not an object</source>
        <translation>是数组，而不是对象</translation>
    </message>
    <message>
        <source>is given twice</source>
        <translation>给出了两次</translation>
    </message>
    <message>
        <source>is empty; the platforms are %1</source>
        <translation>为空；可用的平台有 %1</translation>
    </message>
    <message>
        <source>is %1, and the platforms are %2</source>
        <translation>的值是 %1，而可用的平台有 %2</translation>
    </message>
    <message>
        <source>differs from &quot;%1&quot; in nothing but the case or form of letters</source>
        <translation>与 &quot;%1&quot; 只有字母大小写或字形编码的差别</translation>
    </message>
    <message>
        <source>is no name of an environment variable</source>
        <translation>不是环境变量的名称</translation>
    </message>
    <message>
        <source>names %1, which the environment does not have</source>
        <translation>指定的 %1 在环境中没有设置</translation>
    </message>
    <message>
        <source>is missing, and &quot;environment&quot; as well</source>
        <translation>缺失，&quot;environment&quot; 也没有给出</translation>
    </message>
    <message>
        <source>stands beside &quot;file&quot;: one of them is wanted</source>
        <translation>与 &quot;file&quot; 同时给出：只能给出其中一个</translation>
    </message>
    <message>
        <source>is a channel&apos;s package, which belongs to the output</source>
        <translation>是某个渠道的安装包，它属于输出</translation>
    </message>
</context>
<context>
    <name>JobInputs</name>
    <message>
        <source>names %1, which does not exist</source>
        <translation>指定的 %1 不存在</translation>
    </message>
    <message>
        <source>names %1, which is not a regular file</source>
        <translation>指定的 %1 不是普通文件</translation>
    </message>
    <message>
        <source>names %1, which cannot be read: %2</source>
        <translation>指定的 %1 无法读取：%2</translation>
    </message>
    <message>
        <source>names %1, which is no APK</source>
        <translation>指定的 %1 不是 APK</translation>
    </message>
    <message>
        <source>names %1, which is no picture: %2</source>
        <translation>指定的 %1 不是图片：%2</translation>
    </message>
    <message>
        <source>names %1, which is not a folder</source>
        <translation>指定的 %1 不是文件夹</translation>
    </message>
    <message>
        <source>names %1, which cannot be read</source>
        <translation>指定的 %1 无法读取</translation>
    </message>
    <message>
        <source>cannot be used: %1</source>
        <translation>无法使用：%1</translation>
    </message>
    <message>
        <source>names %1, and %2 is not a folder</source>
        <translation>指定了 %1，而 %2 不是文件夹</translation>
    </message>
    <message>
        <source>is the work folder, too: %1</source>
        <translation>同时也是工作文件夹：%1</translation>
    </message>
    <message>
        <source>lies in the work folder %1</source>
        <translation>位于工作文件夹 %1 之中</translation>
    </message>
    <message>
        <source>lies in the output folder %1</source>
        <translation>位于输出文件夹 %1 之中</translation>
    </message>
    <message>
        <source>is %1, which holds the job itself</source>
        <translation>的值是 %1，任务文件本身就在其中</translation>
    </message>
    <message>
        <source>is %1, which holds what %2 names</source>
        <translation>的值是 %1，%2 指定的内容就在其中</translation>
    </message>
    <message>
        <source>is %1, which lies in the folder that %2 names</source>
        <translation>的值是 %1，它位于 %2 指定的文件夹之中</translation>
    </message>
</context>
<context>
    <name>JobObject</name>
    <message>
        <source>a text</source>
        <translation>文本</translation>
    </message>
    <message>
        <source>a number</source>
        <translation>数字</translation>
    </message>
    <message>
        <source>true or false</source>
        <translation>真假值</translation>
    </message>
    <message>
        <source>an array</source>
        <translation>数组</translation>
    </message>
    <message>
        <source>an object</source>
        <translation>对象</translation>
    </message>
    <message>
        <source>null</source>
        <translation>null</translation>
    </message>
    <message>
        <source>is a comment, and not a text or an array of texts</source>
        <translation>是注释，但不是文本或文本的数组</translation>
    </message>
    <message>
        <source>is an unknown key; the keys here are %1</source>
        <translation>是未知的键；此处可用的键有 %1</translation>
    </message>
    <message>
        <source>is missing</source>
        <translation>缺失</translation>
    </message>
    <message>
        <source>is not a whole number from %1 to 2147483647</source>
        <translation>不是 %1 到 2147483647 之间的整数</translation>
    </message>
    <message>
        <source>is %1, which stands here already</source>
        <translation>的值是 %1，此处已经有了</translation>
    </message>
    <message>
        <source>is empty</source>
        <translation>为空</translation>
    </message>
    <message>
        <source>holds a control character</source>
        <translation>含有控制字符</translation>
    </message>
    <message>
        <source>holds half of a surrogate pair</source>
        <translation>含有半个代理对</translation>
    </message>
    <message>
        <source>is %1, not %2</source>
        <translation>是%1，而不是%2</translation>
    </message>
    <message>
        <source>is an unknown key</source>
        <translation>是未知的键</translation>
    </message>
    <message>
        <source>is longer than %1 bytes</source>
        <translation>超过 %1 个字节</translation>
    </message>
</context>
<context>
    <name>JobPlan</name>
    <message>
        <source>flush</source>
        <translation>紧贴</translation>
    </message>
    <message>
        <source>no mark</source>
        <translation>无角标</translation>
    </message>
    <message>
        <source>%1 at %2, %3</source>
        <translation>%1，位置 %2，%3</translation>
    </message>
    <message>
        <source>encrypted</source>
        <translation>加密</translation>
    </message>
    <message>
        <source>signed</source>
        <translation>已签名</translation>
    </message>
    <message>
        <source>unsigned</source>
        <translation>未签名</translation>
    </message>
    <message>
        <source>with %1</source>
        <translation>使用 %1</translation>
    </message>
    <message>
        <source>no key is named</source>
        <translation>未指定密钥</translation>
    </message>
    <message>
        <source>as they are</source>
        <translation>保持原样</translation>
    </message>
    <message>
        <source>%1, channels: %2</source>
        <translation>%1，渠道：%2</translation>
    </message>
    <message>
        <source>base</source>
        <translation>基础包</translation>
    </message>
    <message>
        <source>icons</source>
        <translation>图标</translation>
    </message>
    <message>
        <source>signing</source>
        <translation>签名</translation>
    </message>
    <message>
        <source>work</source>
        <translation>工作</translation>
    </message>
    <message>
        <source>output</source>
        <translation>输出</translation>
    </message>
    <message>
        <source>none</source>
        <translation>无</translation>
    </message>
    <message>
        <source>channel</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>mark</source>
        <translation>角标</translation>
    </message>
    <message>
        <source>SDKs</source>
        <translation>SDK</translation>
    </message>
    <message>
        <source>package</source>
        <translation>安装包</translation>
    </message>
</context>
<context>
    <name>JobTemplate</name>
    <message>
        <source>A job of quenzo build. Paths are relative to this file.</source>
        <translation>quenzo build 的任务。路径相对于本文件。</translation>
    </message>
    <message>
        <source>quenzo build --check job.json looks at it and changes nothing; quenzo build job.json makes the packages.</source>
        <translation>quenzo build --check job.json 检查它而不改动任何内容；quenzo build job.json 生成安装包。</translation>
    </message>
    <message>
        <source>For signed packages: &quot;signing&quot;: {&quot;keystore&quot;: &quot;FILE&quot;, &quot;alias&quot;: &quot;NAME&quot;, &quot;password&quot;: {&quot;environment&quot;: &quot;NAME&quot;}}.</source>
        <translation>要给安装包签名：&quot;signing&quot;: {&quot;keystore&quot;: &quot;FILE&quot;, &quot;alias&quot;: &quot;NAME&quot;, &quot;password&quot;: {&quot;environment&quot;: &quot;NAME&quot;}}。</translation>
    </message>
    <message>
        <source>The game&apos;s icon, and a folder a mark with its picture for each corner.</source>
        <translation>游戏的图标，以及角标文件夹：每个角标一个子文件夹，内有各个角的图片。</translation>
    </message>
    <message>
        <source>SDK packages by names of your own: &quot;NAME&quot;: {&quot;package&quot;: &quot;FILE.zip&quot;, &quot;id&quot;: 7}; &quot;id&quot; is the number that the package has to bear.</source>
        <translation>SDK 包，名称自定：&quot;NAME&quot;: {&quot;package&quot;: &quot;FILE.zip&quot;, &quot;id&quot;: 7}；&quot;id&quot; 是包中必须有的编号。</translation>
    </message>
    <message>
        <source>What holds for every channel that does not say otherwise: mark, corner, x, y, sdks, files, settings, encrypt.</source>
        <translation>适用于所有没有另行说明的渠道：mark、corner、x、y、sdks、files、settings、encrypt。</translation>
    </message>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>the folder %1 cannot be made</source>
        <translation>无法创建文件夹 %1</translation>
    </message>
    <message>
        <source>%1 cannot be put in its place</source>
        <translation>无法将 %1 放到目标位置</translation>
    </message>
    <message>
        <source>%1 is not a folder</source>
        <translation>%1 不是文件夹</translation>
    </message>
    <message>
        <source>the folder %1 is not empty</source>
        <translation>文件夹 %1 不是空的</translation>
    </message>
</context>
<context>
    <name>JsonPlace</name>
    <message>
        <source>line %1, column %2</source>
        <translation>第 %1 行第 %2 列</translation>
    </message>
</context>
<context>
    <name>JsonRowTexts</name>
    <message>
        <source>&apos;%1&apos; holds neither text, number, true, false nor null</source>
        <translation>&apos;%1&apos; 的值不是文本、数字、true、false 或 null</translation>
    </message>
    <message>
        <source>a name holds a null character behind &apos;%1&apos;</source>
        <translation>有一个名称在 &apos;%1&apos; 之后含有空字符</translation>
    </message>
    <message>
        <source>&apos;%1&apos; holds half a surrogate pair, which is no character</source>
        <translation>&apos;%1&apos; 含有半个代理对，不是字符</translation>
    </message>
    <message>
        <source>a row is one JSON object</source>
        <translation>一行是一个 JSON 对象</translation>
    </message>
    <message>
        <source>the column &apos;%1&apos; is given twice</source>
        <translation>列 &apos;%1&apos; 给出了两次</translation>
    </message>
    <message>
        <source>the integer of &apos;%1&apos; is beyond 64 bits; in quotation marks it is kept as text</source>
        <translation>&apos;%1&apos; 的整数超出 64 位；加上引号则作为文本保存</translation>
    </message>
</context>
<context>
    <name>LayoutProduction</name>
    <message>
        <source>its picture could not be made</source>
        <translation>无法生成其图片</translation>
    </message>
    <message>
        <source>the folder could not be made: %1</source>
        <translation>无法创建文件夹：%1</translation>
    </message>
    <message>
        <source>what is there is no regular file</source>
        <translation>那里已有的不是普通文件</translation>
    </message>
    <message>
        <source>%1 was not written: %2</source>
        <translation>未写入 %1：%2</translation>
    </message>
</context>
<context>
    <name>Manifest</name>
    <message>
        <source>it is nested too deep</source>
        <translation>嵌套过深</translation>
    </message>
    <message>
        <source>the decoded manifest cannot be read: %1</source>
        <translation>无法读取解码后的清单：%1</translation>
    </message>
    <message>
        <source>the decoded manifest has no application with a package&apos;s name</source>
        <translation>解码后的清单中没有带包名的 application</translation>
    </message>
    <message>
        <source>the config.xml of the SDK &apos;%1&apos; cannot be read: %2</source>
        <translation>无法读取 SDK &apos;%1&apos; 的 config.xml：%2</translation>
    </message>
    <message>
        <source>the SDK &apos;%1&apos; wants another %2 &apos;%3&apos; than the manifest has</source>
        <translation>SDK &apos;%1&apos; 要的 %2 &apos;%3&apos; 与清单中的不同</translation>
    </message>
</context>
<context>
    <name>PackageFacts</name>
    <message>
        <source>reading the manifest</source>
        <translation>正在读取清单</translation>
    </message>
    <message>
        <source>aapt cannot read the package &apos;%1&apos;: %2</source>
        <translation>aapt 无法读取安装包 &apos;%1&apos;：%2</translation>
    </message>
</context>
<context>
    <name>PackageFileTexts</name>
    <message>
        <source>%1: a folder, link or device is in the way</source>
        <translation>%1: 该处有文件夹、链接或设备</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>无法读取 %1：%2</translation>
    </message>
    <message>
        <source>it became shorter</source>
        <translation>它变短了</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
</context>
<context>
    <name>PackageIcons</name>
    <message>
        <source>the package &apos;%1&apos; is no file</source>
        <translation>包 &apos;%1&apos; 不是文件</translation>
    </message>
    <message>
        <source>aapt cannot read the package &apos;%1&apos;</source>
        <translation>aapt 无法读取包 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>the package &apos;%1&apos; has no icon that is a PNG file</source>
        <translation>包 &apos;%1&apos; 没有 PNG 格式的图标</translation>
    </message>
</context>
<context>
    <name>PackageParts</name>
    <message>
        <source>&apos;%1&apos; is neither a file nor a folder</source>
        <translation>&apos;%1&apos; 既不是文件也不是文件夹</translation>
    </message>
    <message>
        <source>SDK &apos;%1&apos;: %2</source>
        <translation>SDK &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>SDK &apos;%1&apos;: files that packages do not take: %2</source>
        <translation>SDK &apos;%1&apos;：安装包不采用的文件数：%2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is written by the build, and no other part may bring it</source>
        <translation>&apos;%1&apos; 由构建写入，其他部分不得带来它</translation>
    </message>
    <message>
        <source>the SDKs &apos;%1&apos; and &apos;%2&apos; bring different files &apos;%3&apos;</source>
        <translation>SDK &apos;%1&apos; 和 &apos;%2&apos; 带来了不同的文件 &apos;%3&apos;</translation>
    </message>
    <message>
        <source>SDK &apos;%1&apos; replaces &apos;%2&apos; of the base</source>
        <translation>SDK &apos;%1&apos; 替换了基础包的 &apos;%2&apos;</translation>
    </message>
</context>
<context>
    <name>PictureFault</name>
    <message>
        <source>it is not a regular file</source>
        <translation>它不是普通文件</translation>
    </message>
    <message>
        <source>the mark picture %1 is missing</source>
        <translation>缺少角标图片 %1</translation>
    </message>
    <message>
        <source>the mark picture %1 cannot be read (%2)</source>
        <translation>无法读取角标图片 %1（%2）</translation>
    </message>
</context>
<context>
    <name>Program</name>
    <message>
        <source>quenzo: the standard output cannot be written: %1</source>
        <translation>quenzo: 无法写入标准输出：%1</translation>
    </message>
    <message>
        <source>word %1, &apos;%2&apos;, is not UTF-8 text</source>
        <translation>第 %1 个词 &apos;%2&apos; 不是 UTF-8 文本</translation>
    </message>
</context>
<context>
    <name>Progress</name>
    <message>
        <source>%1 files</source>
        <translation>%1 个文件</translation>
    </message>
    <message>
        <source>%1 rows</source>
        <translation>%1 行</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1/s</source>
        <translation>%1/s</translation>
    </message>
    <message>
        <source>%1 left</source>
        <translation>剩余 %1</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1 个渠道</translation>
    </message>
</context>
<context>
    <name>QCommandLineParser</name>
    <message>
        <source>Missing value after &apos;%1&apos;.</source>
        <translation>&apos;%1&apos; 之后缺少值。</translation>
    </message>
    <message>
        <source>Unexpected value after &apos;%1&apos;.</source>
        <translation>&apos;%1&apos; 不接受值。</translation>
    </message>
</context>
<context>
    <name>RecordCommands</name>
    <message>
        <source>there is no file &apos;%1&apos;</source>
        <translation>没有文件 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>interrupted</source>
        <translation>已中断</translation>
    </message>
    <message>
        <source>running or killed</source>
        <translation>运行中或被终止</translation>
    </message>
    <message>
        <source>run</source>
        <translation>运行</translation>
    </message>
    <message>
        <source>start</source>
        <translation>开始</translation>
    </message>
    <message>
        <source>time</source>
        <translation>用时</translation>
    </message>
    <message>
        <source>outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>built</source>
        <translation>已构建</translation>
    </message>
    <message>
        <source>unchanged</source>
        <translation>未变</translation>
    </message>
    <message>
        <source>slice</source>
        <translation>份</translation>
    </message>
    <message>
        <source>there was no run yet</source>
        <translation>还没有运行过</translation>
    </message>
    <message>
        <source>%1, run %2, %3: %4</source>
        <translation>%1，第 %2 次运行，%3：%4</translation>
    </message>
    <message>
        <source>there is no run %1</source>
        <translation>没有第 %1 次运行</translation>
    </message>
    <message>
        <source>several records have a run %1</source>
        <translation>多个记录文件都有第 %1 次运行</translation>
    </message>
    <message>
        <source>name one of these files instead of the job</source>
        <translation>请指定其中一个文件，而不是任务</translation>
    </message>
    <message>
        <source>--build takes a run&apos;s number</source>
        <translation>--build 需要一次运行的编号</translation>
    </message>
    <message>
        <source>lists the past runs of a job, the latest first</source>
        <translation>列出任务以往的运行，最近的在前</translation>
    </message>
    <message>
        <source>The job&apos;s file, or a file of build records.</source>
        <translation>任务文件，或构建记录文件。</translation>
    </message>
    <message>
        <source>Lists the channels of this run, and their steps.</source>
        <translation>列出这次运行的渠道及其步骤。</translation>
    </message>
    <message>
        <source>Of a job the runs of its slices are listed, too. A run without an end is still at work, or was killed; its channels are those that it has begun.</source>
        <translation>对于任务，其各份的运行也会列出。没有结束时间的运行仍在进行，或已被终止；其渠道是它已开始的那些。</translation>
    </message>
</context>
<context>
    <name>Report</name>
    <message>
        <source>icon of %1</source>
        <translation>%1 的图标</translation>
    </message>
    <message>
        <source>no icon</source>
        <translation>没有图标</translation>
    </message>
    <message>
        <source>unsigned</source>
        <translation>未签名</translation>
    </message>
    <message>
        <source>signed</source>
        <translation>已签名</translation>
    </message>
    <message>
        <source>Package</source>
        <translation>包</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>Entries</source>
        <translation>条目</translation>
    </message>
    <message>
        <source>%1 replaced</source>
        <translation>替换 %1</translation>
    </message>
    <message>
        <source>%1 added</source>
        <translation>新增 %1</translation>
    </message>
    <message>
        <source>From the base</source>
        <translation>取自基础包</translation>
    </message>
    <message>
        <source>taken over as is</source>
        <translation>原样沿用</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>用时</translation>
    </message>
    <message>
        <source>In the run that built it</source>
        <translation>构建它的那次运行</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>步骤</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>消息</translation>
    </message>
    <message>
        <source>File</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>Certificate, SHA-256</source>
        <translation>证书 SHA-256</translation>
    </message>
    <message>
        <source>Digest</source>
        <translation>摘要</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>详情</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>开始时间</translation>
    </message>
    <message>
        <source>Took</source>
        <translation>用时</translation>
    </message>
    <message>
        <source>Packages</source>
        <translation>包</translation>
    </message>
    <message>
        <source>Signature</source>
        <translation>签名</translation>
    </message>
    <message>
        <source>Slice</source>
        <translation>份</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1/%2</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>任务文件</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>输出文件夹</translation>
    </message>
    <message>
        <source>Build report</source>
        <translation>构建报告</translation>
    </message>
    <message>
        <source>Time of all channels, by step</source>
        <translation>各步骤用时（全部渠道）</translation>
    </message>
    <message>
        <source>the icons of all channels</source>
        <translation>所有渠道的图标</translation>
    </message>
    <message>
        <source>Contact sheets</source>
        <translation>图标总览图</translation>
    </message>
    <message>
        <source>interrupted</source>
        <translation>已中断</translation>
    </message>
    <message>
        <source>channel</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>package</source>
        <translation>安装包</translation>
    </message>
    <message>
        <source>size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>time</source>
        <translation>用时</translation>
    </message>
    <message>
        <source>built</source>
        <translation>已构建</translation>
    </message>
    <message>
        <source>unchanged</source>
        <translation>未变</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>not reached</source>
        <translation>未执行</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>skipped</source>
        <translation>跳过</translation>
    </message>
    <message>
        <source>SDKs</source>
        <translation>SDK</translation>
    </message>
    <message>
        <source>icons</source>
        <translation>图标</translation>
    </message>
    <message>
        <source>encryption</source>
        <translation>加密</translation>
    </message>
    <message>
        <source>signature</source>
        <translation>签名</translation>
    </message>
    <message>
        <source>check</source>
        <translation>检查</translation>
    </message>
    <message>
        <source>output</source>
        <translation>输出</translation>
    </message>
    <message>
        <source>export</source>
        <translation>导出</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 毫秒</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>%1 of %2 unsigned</source>
        <translation>%1/%2 未签名</translation>
    </message>
    <message>
        <source>interrupted: %1 of %2 channels are finished</source>
        <translation>已中断：完成 %1/%2 个渠道</translation>
    </message>
    <message>
        <source>%1 of %2 channels failed</source>
        <translation>%1/%2 个渠道失败</translation>
    </message>
    <message>
        <source>%1 of %2 channels were not reached</source>
        <translation>%1/%2 个渠道未执行</translation>
    </message>
    <message>
        <source>there was no channel to build</source>
        <translation>没有要构建的渠道</translation>
    </message>
    <message>
        <source>every channel is built</source>
        <translation>所有渠道均已构建</translation>
    </message>
    <message>
        <source>en</source>
        <translation>zh-CN</translation>
    </message>
    <message>
        <source>clearing</source>
        <translation>清理</translation>
    </message>
    <message>
        <source>manifest</source>
        <translation>清单</translation>
    </message>
</context>
<context>
    <name>Reports</name>
    <message>
        <source>the report %1 cannot be written: %2</source>
        <translation>无法写入报告 %1：%2</translation>
    </message>
</context>
<context>
    <name>Scrambling</name>
    <message>
        <source>%1, column &apos;%2&apos;: &apos;%3&apos; could not be brought back once it is scrambled (null, less than four bytes, or a zero byte); --lossy writes it all the same</source>
        <translation>%1，列 &apos;%2&apos;：&apos;%3&apos; 加扰后将无法还原（空值、不足四个字节或含零字节）；--lossy 仍会写入</translation>
    </message>
    <message>
        <source>row %1</source>
        <translation>第 %1 行</translation>
    </message>
    <message>
        <source>the condition</source>
        <translation>条件</translation>
    </message>
</context>
<context>
    <name>ScriptCommands</name>
    <message>
        <source>running</source>
        <translation>正在运行</translation>
    </message>
    <message>
        <source>%1 gave no answer</source>
        <translation>%1 没有给出应答</translation>
    </message>
    <message>
        <source>%1 did not answer &quot;param&quot;</source>
        <translation>%1 没有应答 &quot;param&quot;</translation>
    </message>
    <message>
        <source>%1 succeeded</source>
        <translation>%1 成功</translation>
    </message>
    <message>
        <source>CHANNEL-ID is a whole number</source>
        <translation>CHANNEL-ID 是整数</translation>
    </message>
    <message>
        <source>exporting</source>
        <translation>正在导出</translation>
    </message>
    <message>
        <source>export failed with answer %1</source>
        <translation>导出失败，应答为 %1</translation>
    </message>
    <message>
        <source>exported channel %1 to %2</source>
        <translation>已将渠道 %1 导出到 %2</translation>
    </message>
    <message>
        <source>calls a function of a script, which answers &quot;param&quot; when all went well</source>
        <translation>调用脚本的函数；一切顺利时函数应答 &quot;param&quot;</translation>
    </message>
    <message>
        <source>the script file</source>
        <translation>脚本文件</translation>
    </message>
    <message>
        <source>the function&apos;s name</source>
        <translation>函数名</translation>
    </message>
    <message>
        <source>its arguments; whole numbers go as int; negative ones behind a --</source>
        <translation>函数的参数；整数按 int 传递；负数写在 -- 之后</translation>
    </message>
    <message>
        <source>Passes whole numbers as text, too.</source>
        <translation>整数也按文本传递。</translation>
    </message>
    <message>
        <source>Prints what the function returns, a text as it is and numbers, lists and maps as JSON.</source>
        <translation>输出函数的返回值：文本按原样，数字、列表和映射按 JSON。</translation>
    </message>
    <message>
        <source>exports a channel&apos;s developer information</source>
        <translation>导出渠道的开发者信息</translation>
    </message>
    <message>
        <source>the channel&apos;s number</source>
        <translation>渠道编号</translation>
    </message>
    <message>
        <source>the folder to fill</source>
        <translation>要写入的文件夹</translation>
    </message>
    <message>
        <source>--any takes whatever a function answers</source>
        <translation>--any 接受函数返回的任何结果</translation>
    </message>
</context>
<context>
    <name>ScriptMessages</name>
    <message>
        <source>&quot;quenzo key new&quot; makes one</source>
        <translation>用 &quot;quenzo key new&quot; 可生成密钥</translation>
    </message>
</context>
<context>
    <name>ScriptTask</name>
    <message>
        <source>&apos;%1&apos; does not exist</source>
        <translation>&apos;%1&apos; 不存在</translation>
    </message>
    <message>
        <source>%1: calling the script with %2</source>
        <translation>%1: 正在以 %2 调用脚本</translation>
    </message>
    <message>
        <source>%1: calling %2 of %3</source>
        <translation>%1: 正在调用 %3 的 %2</translation>
    </message>
    <message>
        <source>where Python 2.7 is missing, scripts/dependencies.sh python installs it</source>
        <translation>如果缺少 Python 2.7，可用 scripts/dependencies.sh python 安装</translation>
    </message>
    <message>
        <source>- stands for no file here; one of this name is ./-</source>
        <translation>此处 - 不代表任何文件；这个名称的文件写作 ./-</translation>
    </message>
</context>
<context>
    <name>Sheets</name>
    <message>
        <source>%1, channels: %2</source>
        <translation>%1，渠道数：%2</translation>
    </message>
    <message>
        <source>the sheet &apos;%1&apos; cannot be written: %2</source>
        <translation>无法写入图样表 &apos;%1&apos;：%2</translation>
    </message>
</context>
<context>
    <name>Slices</name>
    <message>
        <source>%1 is missing</source>
        <translation>缺少 %1</translation>
    </message>
    <message>
        <source>%1 is a number from %2 on, not &apos;%3&apos;</source>
        <translation>%1 应是不小于 %2 的整数，而不是 &apos;%3&apos;</translation>
    </message>
    <message>
        <source>--slice is I/N, from 1/N to N/N, not &apos;%1&apos;</source>
        <translation>--slice 的写法是 I/N，从 1/N 到 N/N，而不是 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>SLURM_ARRAY_TASK_ID is %1, which is none of %2 tasks from %3 on in steps of %4; number the array evenly, or say --slice I/N</source>
        <translation>SLURM_ARRAY_TASK_ID 为 %1，不属于从 %3 开始、步长为 %4 的 %2 个任务；请为作业数组均匀编号，或用 --slice I/N 指定</translation>
    </message>
    <message>
        <source>JOB_COMPLETION_INDEX does not tell of how many: say --slices N, as many as the job has completions</source>
        <translation>JOB_COMPLETION_INDEX 没有说明总份数：请用 --slices N 指定，与作业的完成数相同</translation>
    </message>
    <message>
        <source>JOB_COMPLETION_INDEX is %1, but with --slices %2 the last one is %3</source>
        <translation>JOB_COMPLETION_INDEX 为 %1，但 --slices %2 时最后一个是 %3</translation>
    </message>
    <message>
        <source>CI_NODE_INDEX is %1, but CI_NODE_TOTAL is %2</source>
        <translation>CI_NODE_INDEX 为 %1，而 CI_NODE_TOTAL 为 %2</translation>
    </message>
    <message>
        <source>--slices is a number from 1 on, not &apos;%1&apos;</source>
        <translation>--slices 应是不小于 1 的整数，而不是 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>--slice says of how many already: leave --slices out</source>
        <translation>--slice 已说明总份数：请去掉 --slices</translation>
    </message>
    <message>
        <source>%1 and %2 both say which slice this is: choose with --slice I/N</source>
        <translation>%1 和 %2 都指明了这是哪一份：请用 --slice I/N 选定</translation>
    </message>
    <message>
        <source>--slices says of how many, but nothing says which: say --slice I/N</source>
        <translation>--slices 说明了总份数，但没有说明是哪一份：请用 --slice I/N 指定</translation>
    </message>
    <message>
        <source>--slices is %1, but by %2 there are %3: choose with --slice I/N</source>
        <translation>--slices 为 %1，但按 %2 有 %3 份：请用 --slice I/N 选定</translation>
    </message>
</context>
<context>
    <name>StandardStreams</name>
    <message>
        <source>the standard input cannot be read: %1</source>
        <translation>无法读取标准输入：%1</translation>
    </message>
</context>
<context>
    <name>Suggestion</name>
    <message>
        <source>%1; did you mean &apos;%2&apos;?</source>
        <translation>%1；您是想输入 &apos;%2&apos; 吗？</translation>
    </message>
    <message>
        <source>%1: &apos;%2&apos; is none of %3</source>
        <translation>%1: &apos;%2&apos; 不是下列任何一个：%3</translation>
    </message>
</context>
<context>
    <name>Table</name>
    <message>
        <source>Shows this help.</source>
        <translation>显示此帮助。</translation>
    </message>
    <message>
        <source>Prints one JSON object as the result.</source>
        <translation>以一个 JSON 对象输出结果。</translation>
    </message>
    <message>
        <source>How the state of work is shown: terminal (a line, where there is one) or json (objects, line by line on the standard error).</source>
        <translation>如何显示工作进度：terminal（在终端上显示一行）或 json（在标准错误上逐行输出对象）。</translation>
    </message>
    <message>
        <source>Shows no progress, no warnings and no word of success.</source>
        <translation>不显示进度、警告和成功信息。</translation>
    </message>
    <message>
        <source>Tells the steps, and all of the causes.</source>
        <translation>显示各个步骤和所有原因。</translation>
    </message>
    <message>
        <source>done</source>
        <translation>已完成</translation>
    </message>
    <message>
        <source>the operation failed, or not all of it could be done</source>
        <translation>操作失败，或未能全部完成</translation>
    </message>
    <message>
        <source>the words were wrong; nothing was done</source>
        <translation>命令行有误；没有做任何事</translation>
    </message>
    <message>
        <source>Ctrl-C ended the program, as a shell tells it: 128 and the signal&apos;s number</source>
        <translation>Ctrl-C 结束了程序，与 shell 的约定一致：128 加信号编号</translation>
    </message>
    <message>
        <source>The file of the key that encrypt and decrypt take, where --key names none.</source>
        <translation>encrypt 和 decrypt 所用密钥的文件，在没有给出 --key 时使用。</translation>
    </message>
    <message>
        <source>The folder that holds the person&apos;s own key, instead of ~/.local/share.</source>
        <translation>存放个人密钥的文件夹，代替 ~/.local/share。</translation>
    </message>
    <message>
        <source>The folder that holds the log of a program that the system&apos;s packages have installed, instead of ~/.local/state.</source>
        <translation>由系统软件包安装的程序存放日志的文件夹，代替 ~/.local/state。</translation>
    </message>
    <message>
        <source>The file of the channels&apos; developer records that export reads.</source>
        <translation>export 所读取的渠道开发者记录文件。</translation>
    </message>
    <message>
        <source>The device of install and uninstall, where --device names none.</source>
        <translation>install 和 uninstall 所用的设备，在没有给出 --device 时使用。</translation>
    </message>
    <message>
        <source>How many seconds one command of adb may take: 600.</source>
        <translation>一条 adb 命令最多可用的秒数：600。</translation>
    </message>
    <message>
        <source>How many seconds of these it may wait for a device that is away: 20.</source>
        <translation>其中等待不在线设备的最多秒数：20。</translation>
    </message>
    <message>
        <source>A terminal that is &quot;dumb&quot; gets no state of work at hand, and no colour.</source>
        <translation>值为 &quot;dumb&quot; 的终端不显示即时进度，也没有颜色。</translation>
    </message>
    <message>
        <source>Any value switches colour off.</source>
        <translation>任何值都会关闭颜色。</translation>
    </message>
    <message>
        <source>The program; everything else is found from its folder, links resolved.</source>
        <translation>程序；其他一切都从它的文件夹（解析链接之后）开始查找。</translation>
    </message>
    <message>
        <source>The scripts behind import, encrypt, decrypt, pack, unpack and export, and the developer records.</source>
        <translation>import、encrypt、decrypt、pack、unpack 和 export 所用的脚本，以及开发者记录。</translation>
    </message>
    <message>
        <source>adb and aapt, and what the interpreter imports first.</source>
        <translation>adb 和 aapt，以及解释器最先导入的内容。</translation>
    </message>
    <message>
        <source>The log.</source>
        <translation>日志。</translation>
    </message>
    <message>
        <source>The log of a program that the system&apos;s packages have installed.</source>
        <translation>由系统软件包安装的程序的日志。</translation>
    </message>
    <message>
        <source>The person&apos;s own key, made when it is first needed.</source>
        <translation>个人密钥，首次需要时生成。</translation>
    </message>
    <message>
        <source>The locale, as LC_MESSAGES and LANG name it, too: zh_CN.UTF-8 brings the texts in Simplified Chinese.</source>
        <translation>区域设置，也可由 LC_MESSAGES 和 LANG 指定：zh_CN.UTF-8 使用简体中文文本。</translation>
    </message>
    <message>
        <source>The languages of texts, parted by colons, instead of the locale&apos;s.</source>
        <translation>文本所用的语言，以冒号分隔，代替区域设置的语言。</translation>
    </message>
    <message>
        <source>Prints the version.</source>
        <translation>打印版本号。</translation>
    </message>
    <message>
        <source>tells of the program; help COMMAND of one command</source>
        <translation>介绍本程序；help COMMAND 介绍一个命令</translation>
    </message>
    <message>
        <source>prints the version</source>
        <translation>打印版本号</translation>
    </message>
</context>
<context>
    <name>ToolCheck</name>
    <message>
        <source>the program %1 is missing: there is no %2 that can be run</source>
        <translation>缺少程序 %1：没有可运行的 %2</translation>
    </message>
    <message>
        <source>the program %1 does not work: %2</source>
        <translation>程序 %1 无法工作：%2</translation>
    </message>
</context>
<context>
    <name>ToolRun</name>
    <message>
        <source>it printed more than %1 bytes</source>
        <translation>它输出的内容超过 %1 字节</translation>
    </message>
    <message>
        <source>it crashed</source>
        <translation>它崩溃了</translation>
    </message>
    <message>
        <source>running %1</source>
        <translation>正在运行 %1</translation>
    </message>
</context>
<context>
    <name>TreeCommands</name>
    <message>
        <source>files: %1, size: %2</source>
        <translation>文件数：%1，大小：%2</translation>
    </message>
    <message>
        <source>everything was copied to &apos;%1&apos;, but files are still in &apos;%2&apos;: %3</source>
        <translation>所有内容都已复制到 &apos;%1&apos;，但 &apos;%2&apos; 中仍有文件：%3</translation>
    </message>
    <message>
        <source>Copied to %1: %2</source>
        <translation>已复制到 %1：%2</translation>
    </message>
    <message>
        <source>Moved to %1: %2</source>
        <translation>已移动到 %1：%2</translation>
    </message>
    <message>
        <source>removing</source>
        <translation>正在删除</translation>
    </message>
    <message>
        <source>Removed %1: %2</source>
        <translation>已删除 %1：%2</translation>
    </message>
    <message>
        <source>this removes &apos;%1&apos; with all in it: --yes is needed where nobody can be asked</source>
        <translation>这会删除 &apos;%1&apos; 及其中的所有内容：无法询问用户时必须给出 --yes</translation>
    </message>
    <message>
        <source>counting</source>
        <translation>正在统计</translation>
    </message>
    <message>
        <source>Remove &apos;%1&apos; with all in it (%2)? [y/N]</source>
        <translation>删除 &apos;%1&apos; 及其中的全部内容（%2）吗？[y/N]</translation>
    </message>
    <message>
        <source>Tells file by file what would be done, and does nothing.</source>
        <translation>逐个文件列出将要做的事，不做任何改动。</translation>
    </message>
    <message>
        <source>The folder whose content is meant.</source>
        <translation>要处理其内容的文件夹。</translation>
    </message>
    <message>
        <source>The folder for it; existing files are replaced.</source>
        <translation>目标文件夹；已有的文件会被替换。</translation>
    </message>
    <message>
        <source>moves a folder&apos;s content into an output folder, which may lie inside</source>
        <translation>把文件夹的内容移动到输出文件夹，后者可以在前者之内</translation>
    </message>
    <message>
        <source>Names directly in SRC that stay, in any case: Log,build</source>
        <translation>直接位于 SRC 中、无论如何都要保留的名称：Log,build</translation>
    </message>
    <message>
        <source>The folder.</source>
        <translation>文件夹。</translation>
    </message>
    <message>
        <source>copies a folder&apos;s content into another folder</source>
        <translation>把文件夹的内容复制到另一个文件夹</translation>
    </message>
    <message>
        <source>moves a folder&apos;s content into another folder</source>
        <translation>把文件夹的内容移动到另一个文件夹</translation>
    </message>
    <message>
        <source>removes a folder with everything in it, read-only files too</source>
        <translation>删除文件夹及其中的所有内容，包括只读文件</translation>
    </message>
    <message>
        <source>Does not ask; needed where there is no terminal.</source>
        <translation>不询问；没有终端时必须给出。</translation>
    </message>
    <message>
        <source>removed the folder &apos;%1&apos;</source>
        <translation>已删除文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>would move %1</source>
        <translation>将移动 %1</translation>
    </message>
    <message>
        <source>would copy %1</source>
        <translation>将复制 %1</translation>
    </message>
    <message>
        <source>would remove %1</source>
        <translation>将删除 %1</translation>
    </message>
</context>
<context>
    <name>TreeOperation</name>
    <message>
        <source>copying</source>
        <translation>正在复制</translation>
    </message>
    <message>
        <source>moving</source>
        <translation>正在移动</translation>
    </message>
    <message>
        <source>%1 of %2 files</source>
        <translation>%1 / %2 个文件</translation>
    </message>
    <message>
        <source>and %1 more like these</source>
        <translation>以及另外 %1 个类似的</translation>
    </message>
    <message>
        <source>from &apos;%1&apos; to &apos;%2&apos;</source>
        <translation>从 &apos;%1&apos; 到 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>counting</source>
        <translation>正在统计</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a link to the target, or to a folder that holds it; nothing was touched</source>
        <translation>&apos;%1&apos; 是指向目标或其上级文件夹的链接；没有改动任何内容</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; could not be made</source>
        <translation>无法创建文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>not everything has come to &apos;%1&apos;; the rest is in &apos;%2&apos;</source>
        <translation>并非所有内容都已到达 &apos;%1&apos;；其余的在 &apos;%2&apos; 中</translation>
    </message>
</context>
<context>
    <name>TreePaths</name>
    <message>
        <source>the name of a folder is longer than %1 bytes</source>
        <translation>文件夹的名称超过 %1 个字节</translation>
    </message>
    <message>
        <source>the name of a folder is empty</source>
        <translation>文件夹的名称为空</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be found: the current folder is gone; give a whole path</source>
        <translation>找不到 &apos;%1&apos;：当前文件夹已不存在；请给出完整路径</translation>
    </message>
    <message>
        <source>&apos;%1&apos; and &apos;%2&apos; are the same folder</source>
        <translation>&apos;%1&apos; 和 &apos;%2&apos; 是同一个文件夹</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is inside &apos;%2&apos;</source>
        <translation>&apos;%1&apos; 在 &apos;%2&apos; 之内</translation>
    </message>
    <message>
        <source>there is no folder &apos;%1&apos;</source>
        <translation>没有文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a folder</source>
        <translation>&apos;%1&apos; 不是文件夹</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; cannot be read</source>
        <translation>无法读取文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a link that leads nowhere</source>
        <translation>&apos;%1&apos; 是没有指向任何内容的链接</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos;, in which &apos;%2&apos; is to be made, does not exist</source>
        <translation>文件夹 &apos;%1&apos; 不存在，无法在其中创建 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; cannot be written to</source>
        <translation>无法写入文件夹 &apos;%1&apos;</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a link; name the folder that it leads to</source>
        <translation>&apos;%1&apos; 是链接；请给出它所指向的文件夹</translation>
    </message>
    <message>
        <source>&apos;%1&apos; holds the current folder and is not removed</source>
        <translation>&apos;%1&apos; 包含当前文件夹，不会删除</translation>
    </message>
</context>
<context>
    <name>TreePlan</name>
    <message>
        <source>would move &apos;%1&apos; to &apos;%2&apos;, which is replaced</source>
        <translation>将把 &apos;%1&apos; 移动到 &apos;%2&apos;，后者将被替换</translation>
    </message>
    <message>
        <source>would move &apos;%1&apos; to &apos;%2&apos;</source>
        <translation>将把 &apos;%1&apos; 移动到 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>would copy &apos;%1&apos; to &apos;%2&apos;, which is replaced</source>
        <translation>将把 &apos;%1&apos; 复制到 &apos;%2&apos;，后者将被替换</translation>
    </message>
    <message>
        <source>would copy &apos;%1&apos; to &apos;%2&apos;</source>
        <translation>将把 &apos;%1&apos; 复制到 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>would remove &apos;%1&apos;</source>
        <translation>将删除 &apos;%1&apos;</translation>
    </message>
</context>
<context>
    <name>TreeRemoval</name>
    <message>
        <source>&apos;%1&apos; could not be removed: %2</source>
        <translation>无法删除 &apos;%1&apos;：%2</translation>
    </message>
</context>
<context>
    <name>Worker</name>
    <message>
        <source>no thread could be started for the work; nothing was done</source>
        <translation>无法启动工作线程；没有做任何事</translation>
    </message>
</context>
<context>
    <name>ZipContentTexts</name>
    <message>
        <source>it unpacks to more than it declares</source>
        <translation>解压后的大小超过其声明</translation>
    </message>
    <message>
        <source>it is damaged (size or checksum)</source>
        <translation>已损坏（大小或校验和）</translation>
    </message>
    <message>
        <source>it has bytes behind its end</source>
        <translation>末尾之后还有多余的字节</translation>
    </message>
    <message>
        <source>&apos;%1&apos;: %2</source>
        <translation>&apos;%1&apos;: %2</translation>
    </message>
    <message>
        <source>it is damaged or cut off</source>
        <translation>已损坏或被截断</translation>
    </message>
    <message>
        <source>&apos;%1&apos; has no entry &apos;%2&apos;</source>
        <translation>&apos;%1&apos; 中没有条目 &apos;%2&apos;</translation>
    </message>
    <message>
        <source>the entry &apos;%2&apos; of &apos;%1&apos; is too large</source>
        <translation>&apos;%1&apos; 中的条目 &apos;%2&apos; 过大</translation>
    </message>
</context>
<context>
    <name>ZipDirectoryTexts</name>
    <message>
        <source>the archive&apos;s directory is not complete</source>
        <translation>压缩包的目录不完整</translation>
    </message>
    <message>
        <source>the archive is cut off in &apos;%1&apos;</source>
        <translation>压缩包在 &apos;%1&apos; 处被截断</translation>
    </message>
    <message>
        <source>this is not a zip archive</source>
        <translation>这不是 zip 压缩包</translation>
    </message>
    <message>
        <source>the archive has something behind its end</source>
        <translation>压缩包末尾之后还有内容</translation>
    </message>
    <message>
        <source>the archive is one part of several</source>
        <translation>该压缩包只是多个分卷之一</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is encrypted</source>
        <translation>&apos;%1&apos; 已加密</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is packed with the unknown method %2</source>
        <translation>&apos;%1&apos; 使用了未知的压缩方法 %2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a link or a device</source>
        <translation>&apos;%1&apos; 是链接或设备</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is stored in another size than its own</source>
        <translation>&apos;%1&apos; 的存储大小与自身大小不符</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; has content</source>
        <translation>文件夹 &apos;%1&apos; 带有内容</translation>
    </message>
    <message>
        <source>there is no local header for &apos;%1&apos;</source>
        <translation>&apos;%1&apos; 没有本地文件头</translation>
    </message>
    <message>
        <source>two headers disagree about &apos;%1&apos;</source>
        <translation>关于 &apos;%1&apos; 的两个文件头不一致</translation>
    </message>
    <message>
        <source>&apos;%1&apos; shares bytes with another entry</source>
        <translation>&apos;%1&apos; 与另一个条目共用字节</translation>
    </message>
    <message>
        <source>the archive unpacks to more than %1 bytes</source>
        <translation>压缩包解压后超过 %1 字节</translation>
    </message>
    <message>
        <source>the archive unpacks to more than %1 times its size</source>
        <translation>压缩包解压后超过自身大小的 %1 倍</translation>
    </message>
    <message>
        <source>the archive has more than %1 entries, or a directory of more than %2 bytes</source>
        <translation>压缩包的条目超过 %1 个，或目录超过 %2 字节</translation>
    </message>
</context>
<context>
    <name>ZipNameTexts</name>
    <message>
        <source>the name of the entry &apos;%1&apos; is not a plain path</source>
        <translation>条目名称 &apos;%1&apos; 不是普通路径</translation>
    </message>
    <message>
        <source>the entry &apos;%1&apos; is there twice</source>
        <translation>条目 &apos;%1&apos; 出现了两次</translation>
    </message>
    <message>
        <source>the entry &apos;%1&apos; lies in a file</source>
        <translation>条目 &apos;%1&apos; 位于一个文件之中</translation>
    </message>
</context>
<context>
    <name>ZipWriterTexts</name>
    <message>
        <source>&apos;%1&apos;: %2</source>
        <translation>&apos;%1&apos;: %2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; changed while it was packed</source>
        <translation>&apos;%1&apos; 在打包期间发生了变化</translation>
    </message>
    <message>
        <source>the package would hold more than can be unpacked again</source>
        <translation>安装包的内容会超出可再次解压的限度</translation>
    </message>
</context>
</TS>
