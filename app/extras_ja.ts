<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>GraphMenu</name>
    <message>
        <source>&amp;Copy</source>
        <translation>コピー(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Save Picture…</source>
        <translation>図を保存(&amp;S)…</translation>
    </message>
    <message>
        <source>Save &amp;Data…</source>
        <translation>データを保存(&amp;D)…</translation>
    </message>
    <message>
        <source>&amp;Reset Range</source>
        <translation>表示範囲を元に戻す(&amp;R)</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>図を保存</translation>
    </message>
    <message>
        <source>Save Data</source>
        <translation>データを保存</translation>
    </message>
    <message>
        <source>There is nothing in the graph yet.</source>
        <translation>グラフにはまだ何もありません。</translation>
    </message>
    <message>
        <source>The file [%1] is one that is shown: choose another name.</source>
        <translation>ファイル [%1] は表示中のデータのファイルです。別の名前にしてください。</translation>
    </message>
</context>
<context>
    <name>JobMenu</name>
    <message>
        <source>Job</source>
        <translation>ジョブ</translation>
    </message>
    <message>
        <source>&amp;Save Job…</source>
        <translation>ジョブを保存(&amp;S)…</translation>
    </message>
    <message>
        <source>&amp;Open Job…</source>
        <translation>ジョブを開く(&amp;O)…</translation>
    </message>
    <message>
        <source>&amp;Guide</source>
        <translation>手引き(&amp;G)</translation>
    </message>
    <message>
        <source>Save Job</source>
        <translation>ジョブを保存</translation>
    </message>
    <message>
        <source>Open Job</source>
        <translation>ジョブを開く</translation>
    </message>
    <message>
        <source>A job cannot hold: %1</source>
        <translation>ジョブに保存できないもの: %1</translation>
    </message>
    <message>
        <source>The window does not show of the job: %1</source>
        <translation>ジョブのうちウィンドウに表示できないもの: %1</translation>
    </message>
</context>
<context>
    <name>GuideWindow</name>
    <message>
        <source>Guide</source>
        <translation>手引き</translation>
    </message>
</context>
<context>
    <name>ResultsMenu</name>
    <message>
        <source>Copy All &amp;Results</source>
        <translation>すべての結果をコピー(&amp;R)</translation>
    </message>
</context>
<context>
    <name>StatusWords</name>
    <message>
        <source>Nothing could be read from %1.</source>
        <translation>%1 からは何も読めませんでした。</translation>
    </message>
    <message>
        <source>The guide is not installed.</source>
        <translation>手引きがインストールされていません。</translation>
    </message>
    <message>
        <source>Written: %1</source>
        <translation>書き込みました: %1</translation>
    </message>
    <message>
        <source>No. %1: mut of the energy before. Press Enter in its energy field.</source>
        <translation>番号 %1: μt は変更前のエネルギーのものです。エネルギーの欄で Enter を押してください。</translation>
    </message>
    <message>
        <source>mut of the Victreen lines before. Click %1 off and on again.</source>
        <translation>μt は変更前のビクトリーン線によるものです。「%1」を外して付け直してください。</translation>
    </message>
    <message>
        <source>Not used yet: %1. Press %2.</source>
        <translation>まだ計算に使われていません: %1。%2 を押してください。</translation>
    </message>
</context>
<context>
    <name>MapWindow</name>
    <message>
        <source>Valence</source>
        <translation>価数</translation>
    </message>
    <message>
        <source>no result: %1</source>
        <translation>結果なし: %1</translation>
    </message>
    <message>
        <source>below %1: %2</source>
        <translation>%1 未満: %2</translation>
    </message>
    <message>
        <source>above %1: %2</source>
        <translation>%1 超: %2</translation>
    </message>
    <message>
        <source>t/ts below %1, shown palest: %2</source>
        <translation>t/ts が %1 未満 (最も淡い色で表示): %2</translation>
    </message>
    <message>
        <source>t/ts above %1, shown fullest: %2</source>
        <translation>t/ts が %1 超 (最も濃い色で表示): %2</translation>
    </message>
    <message>
        <source>covered by other pixels: %1</source>
        <translation>ほかの画素に隠れた画素: %1</translation>
    </message>
    <message>
        <source>a dot shows one of %1 x %2 pixels</source>
        <translation>1 点は %1 × %2 画素のうちの 1 画素を示す</translation>
    </message>
    <message>
        <source>the axes have different scales</source>
        <translation>縦軸と横軸の縮尺は異なる</translation>
    </message>
    <message>
        <source>Position 1 (units of the stage)</source>
        <translation>位置 1 (ステージの単位)</translation>
    </message>
    <message>
        <source>Position 2 (units of the stage)</source>
        <translation>位置 2 (ステージの単位)</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>列</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>行</translation>
    </message>
    <message>
        <source>Show &amp;Map</source>
        <translation>2次元データの図を表示(&amp;M)</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>2次元データの図</translation>
    </message>
    <message>
        <source>Valence by thickness</source>
        <translation>価数(濃さは厚さ)</translation>
    </message>
    <message>
        <source>What the map shows</source>
        <translation>図に示すもの</translation>
    </message>
    <message>
        <source>Drag over the map for the mean of a region.</source>
        <translation>図の上をドラッグすると、その範囲の平均が出ます。</translation>
    </message>
    <message>
        <source>%1  Valence: %2  t/ts: %3</source>
        <translation>%1  価数: %2  厚さ t/ts: %3</translation>
    </message>
    <message>
        <source>%1 pixels: Valence %2, t/ts %3</source>
        <translation>%1 画素: 価数 %2、厚さ t/ts %3</translation>
    </message>
</context>
</TS>
